#include "kernel/cumulative.h"

#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/cumulative.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using detail::Running;

template <Running kRunning, class V>
HWY_INLINE V Next(V before, V x) {
  return kRunning == Running::kSum ? hn::Add(before, x) : hn::Mul(before, x);
}

template <Running kRunning>
void AdvanceLoop(const double* before, const double* x, double* out, std::size_t count) {
  ForEachVector(out, count, [=](auto d, std::size_t i) HWY_ATTR {
    const auto missing = hn::Set(d, kMissing);
    const auto result = hn::LoadU(d, before + i);
    const auto value = hn::LoadU(d, x + i);
    const auto is_missing = hn::Or(hn::Eq(result, missing), hn::Eq(value, missing));
    hn::StoreU(hn::IfThenElse(is_missing, missing, Next<kRunning>(result, value)), d, out + i);
  });
}

// Rows that are interleaved, so that a vector holds an element of each.
constexpr std::size_t kGroupRows = 4;
constexpr std::size_t kGroups = detail::RunningRows::kRows / kGroupRows;
// Columns that are interleaved at a time.
constexpr std::size_t kTileCols = 64;

// An addition waits for the one before it in its row: with a row in each lane, and some vectors of
// these, others take place meanwhile, and each row is still added from left to right.
template <Running kRunning>
void AdvanceTile(double* values, double* tile) {
  const hn::CappedTag<double, kGroupRows> d;
  constexpr std::size_t kVectors = detail::RunningRows::kRows / hn::MaxLanes(d);
  const std::size_t lanes = hn::Lanes(d);
  const auto missing = hn::Set(d, kMissing);
  hn::Vec<decltype(d)> results[kVectors];
  hn::Mask<decltype(d)> is_missing[kVectors];
  double* places[kVectors];
  for (std::size_t k = 0; k < kVectors; ++k) {
    const std::size_t row = k * lanes;
    results[k] = hn::LoadU(d, values + row);
    is_missing[k] = hn::Eq(results[k], missing);
    places[k] = tile + row / kGroupRows * kGroupRows * kTileCols + row % kGroupRows;
  }
  for (std::size_t i = 0; i < kGroupRows * kTileCols; i += kGroupRows) {
    for (std::size_t k = 0; k < kVectors; ++k) {
      const auto x = hn::LoadU(d, places[k] + i);
      results[k] = Next<kRunning>(results[k], x);
      const auto becomes = hn::Or(hn::Eq(x, missing), hn::Eq(results[k], missing));
      is_missing[k] = hn::Or(is_missing[k], becomes);
      hn::StoreU(hn::IfThenElse(is_missing[k], missing, results[k]), d, places[k] + i);
    }
  }
  for (std::size_t k = 0; k < kVectors; ++k) {
    hn::StoreU(hn::IfThenElse(is_missing[k], missing, results[k]), d, values + k * lanes);
  }
}

template <Running kRunning>
void AdvanceRow(double& value, const double* x, double* out, std::size_t count) {
  const hn::CappedTag<double, 1> d;
  const auto missing = hn::Set(d, kMissing);
  auto result = hn::Set(d, value);
  auto is_missing = hn::Eq(result, missing);
  for (std::size_t i = 0; i < count; ++i) {
    const auto v = hn::LoadU(d, x + i);
    result = Next<kRunning>(result, v);
    is_missing = hn::Or(is_missing, hn::Or(hn::Eq(v, missing), hn::Eq(result, missing)));
    hn::StoreU(hn::IfThenElse(is_missing, missing, result), d, out + i);
  }
  value = hn::GetLane(hn::IfThenElse(is_missing, missing, result));
}

// All rows of a state; returns how many columns were done.
template <Running kRunning>
std::size_t AdvanceTiles(double* values, const double* x, std::size_t x_stride, double* out,
                         std::size_t out_stride, std::size_t count) {
  const hn::ScalableTag<double> d;
  const std::size_t lanes = hn::Lanes(d);
  HWY_ALIGN double tile[kGroups * kGroupRows * kTileCols];
  std::size_t begin = 0;
  for (; begin + kTileCols <= count; begin += kTileCols) {
    for (std::size_t group = 0; group < kGroups; ++group) {
      const double* const from = x + group * kGroupRows * x_stride + begin;
      double* const to = tile + group * kGroupRows * kTileCols;
      for (std::size_t i = 0; i < kTileCols; i += lanes) {
        hn::StoreInterleaved4(hn::LoadU(d, from + i), hn::LoadU(d, from + x_stride + i),
                              hn::LoadU(d, from + 2 * x_stride + i),
                              hn::LoadU(d, from + 3 * x_stride + i), d, to + kGroupRows * i);
      }
    }
    AdvanceTile<kRunning>(values, tile);
    for (std::size_t group = 0; group < kGroups; ++group) {
      const double* const from = tile + group * kGroupRows * kTileCols;
      double* const to = out + group * kGroupRows * out_stride + begin;
      for (std::size_t i = 0; i < kTileCols; i += lanes) {
        hn::Vec<decltype(d)> rows[kGroupRows];
        hn::LoadInterleaved4(d, from + kGroupRows * i, rows[0], rows[1], rows[2], rows[3]);
        for (std::size_t row = 0; row < kGroupRows; ++row) {
          hn::StoreU(rows[row], d, to + row * out_stride + i);
        }
      }
    }
  }
  return begin;
}

template <Running kRunning>
void AdvanceRowsLoop(double* values, std::size_t rows, const double* x, std::size_t x_stride,
                     double* out, std::size_t out_stride, std::size_t count) {
  std::size_t done = 0;
  if (rows == detail::RunningRows::kRows) {
    done = AdvanceTiles<kRunning>(values, x, x_stride, out, out_stride, count);
  }
  for (std::size_t row = 0; row < rows; ++row) {
    AdvanceRow<kRunning>(values[row], x + row * x_stride + done, out + row * out_stride + done,
                         count - done);
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel::detail {

void Advance(Running running, const double* before, const double* x, double* out,
             std::size_t count) {
  const auto advance = running == Running::kSum
                           ? VELA_KERNEL_DISPATCH(AdvanceLoop<Running::kSum>)
                           : VELA_KERNEL_DISPATCH(AdvanceLoop<Running::kProduct>);
  advance(before, x, out, count);
}

void AdvanceRows(RunningRows& state, std::size_t rows, const double* x, std::size_t x_stride,
                 double* out, std::size_t out_stride, std::size_t count) {
  const auto advance = state.running == Running::kSum
                           ? VELA_KERNEL_DISPATCH(AdvanceRowsLoop<Running::kSum>)
                           : VELA_KERNEL_DISPATCH(AdvanceRowsLoop<Running::kProduct>);
  advance(state.values.data(), rows, x, x_stride, out, out_stride, count);
}

}  // namespace vela::kernel::detail
#endif

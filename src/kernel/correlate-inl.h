// Sums of windows, weighted, in tiles of vectors of floats or doubles.
// Compiled once for each instruction set: the guard lets it in again for the next.

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <hwy/highway.h>
#include <type_traits>

#include "kernel/correlation_job.h"
#include "kernel/load_doubles-inl.h"
#include "kernel/unroll-inl.h"

#if defined(VELA_KERNEL_CORRELATE_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef VELA_KERNEL_CORRELATE_TOGGLE
#undef VELA_KERNEL_CORRELATE_TOGGLE
#else
#define VELA_KERNEL_CORRELATE_TOGGLE
#endif

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class S>
using SumTag = hn::ScalableTag<S>;
template <class S>
using SumVec = hn::Vec<SumTag<S>>;
template <class S>
inline constexpr std::size_t kSumLanes = hn::MaxLanes(SumTag<S>());

// Rows and vectors of results that are summed at once, as many as the registers hold: each vector
// that is loaded serves all the rows.
inline constexpr std::size_t kTileRows = 4;
inline constexpr std::size_t kMostVectors = 4;
template <std::size_t kRows>
inline constexpr std::size_t kTileVectors =
    HWY_TARGET == HWY_AVX3 || kRows < kTileRows ? kMostVectors : 2;

template <bool kFused, class V>
HWY_INLINE V AddProduct(V weight, V x, V sum) {
  if constexpr (kFused) return hn::MulAdd(weight, x, sum);
  return hn::Add(hn::Mul(weight, x), sum);
}

// The sums of a tile's elements: kRows rows of kVectors vectors, from a kernel of kCols columns, or
// of any number where that is 0.
template <class S, std::size_t kRows, std::size_t kVectors, std::size_t kCols, bool kFused>
struct Tile {
  SumVec<S> sum[kRows][kVectors];

  // Adds an extended row's products to the tile's rows kFirst .. kLast - 1; `weights` are those
  // for row kFirst.
  template <std::size_t kFirst, std::size_t kLast>
  HWY_INLINE void AddRow(const S* HWY_RESTRICT x, std::size_t step, const S* HWY_RESTRICT weights,
                         std::size_t cols) {
    if constexpr (kCols > 0) {
      Unroll<kCols>([&](auto j) VELA_KERNEL_UNROLLED {
        AddColumn<kFirst, kLast>(x + j * step, weights + j, kCols);
      });
    } else {
      for (std::size_t j = 0; j < cols; ++j) {
        AddColumn<kFirst, kLast>(x + j * step, weights + j, cols);
      }
    }
  }

  template <std::size_t kFirst, std::size_t kLast>
  HWY_INLINE void AddColumn(const S* HWY_RESTRICT x, const S* HWY_RESTRICT weights,
                            std::size_t cols) {
    const SumTag<S> d;
    SumVec<S> value[kVectors];
    Unroll<kVectors>([&](auto v)
                         VELA_KERNEL_UNROLLED { value[v] = hn::LoadU(d, x + v * kSumLanes<S>); });
    Unroll<kLast - kFirst>([&](auto r) VELA_KERNEL_UNROLLED {
      const SumVec<S> weight = hn::Set(d, *(weights - r * cols));
      Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED {
        sum[kFirst + r][v] = AddProduct<kFused>(weight, value[v], sum[kFirst + r][v]);
      });
    });
  }

  // Every sum adds up its products row by row. Needs weights.rows >= kRows.
  HWY_INLINE void Sum(const S* const* rows, std::size_t column, std::size_t step,
                      const Weights<S>& weights) {
    Unroll<kRows>([&](auto r) VELA_KERNEL_UNROLLED {
      Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED { sum[r][v] = hn::Zero(SumTag<S>()); });
    });
    std::size_t i = 0;
    const auto add = [&]<std::size_t kFirst, std::size_t kLast>() VELA_KERNEL_UNROLLED {
      AddRow<kFirst, kLast>(rows[i] + column, step, weights.values + (i - kFirst) * weights.cols,
                            weights.cols);
      ++i;
    };
    if constexpr (kRows > 1) add.template operator()<0, 1>();
    if constexpr (kRows > 2) add.template operator()<0, 2>();
    if constexpr (kRows > 3) add.template operator()<0, 3>();
    while (i < weights.rows) add.template operator()<0, kRows>();
    if constexpr (kRows > 1) add.template operator()<1, kRows>();
    if constexpr (kRows > 2) add.template operator()<2, kRows>();
    if constexpr (kRows > 3) add.template operator()<3, kRows>();
  }
};

// Sums of as many columns as stay near the processor, for the rows of a tile.
template <class S>
struct Lines {
  static constexpr std::size_t kColumns = 512;
  HWY_ALIGN S sums[kTileRows][kColumns + kMostVectors * kSumLanes<S>];
};

// Sums of the windows in kRows rows from rows[0] on and `count` columns from `column` on; up to a
// tile more are written.
template <class S, std::size_t kRows, std::size_t kCols, bool kFused>
HWY_NOINLINE void SumWindows(const S* const* rows, std::size_t column, std::size_t count,
                             std::size_t step, const Weights<S>& weights, Lines<S>& lines) {
  constexpr std::size_t kVectors = kTileVectors<kRows>;
  for (std::size_t c = 0; c < count; c += kVectors * kSumLanes<S>) {
    Tile<S, kRows, kVectors, kCols, kFused> tile;
    tile.Sum(rows, column + c, step, weights);
    Unroll<kRows>([&](auto r) VELA_KERNEL_UNROLLED {
      Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED {
        hn::Store(tile.sum[r][v], SumTag<S>(), lines.sums[r] + c + v * kSumLanes<S>);
      });
    });
  }
}

template <class S, class V>
HWY_INLINE V Divided(const CorrelationJob<S>& job, V sum) {
  using Lane = hn::TFromV<V>;
  const double divisor = job.plan->divisor;
  if (divisor == 1.0) return sum;
  return hn::Div(sum, hn::Set(hn::DFromV<V>(), static_cast<Lane>(divisor)));
}

// One vector of results as doubles by adding the products row by row, from the weights as the
// caller gave them.
template <class S>
HWY_NOINLINE SumVec<double> PlainResult(const CorrelationJob<S>& job, std::size_t r,
                                        std::size_t column) {
  const SumTag<double> d;
  const std::size_t side = job.plan->side;
  const double* weight = job.plan->kernel.data();
  SumVec<double> sum = hn::Zero(d);
  for (std::size_t i = 0; i < side; ++i) {
    const S* const x = job.rows[r + i] + column;
    for (std::size_t j = 0; j < side; ++j, ++weight) {
      const SumVec<double> value = LoadDoubles(d, x + j * job.step);
      const SumVec<double> factor = hn::Set(d, *weight);
      sum = job.is_whole ? AddProduct<false>(factor, value, sum)
                         : AddProduct<true>(factor, value, sum);
    }
  }
  return Divided(job, sum);
}

// Makes results of the sums of `count` columns in row r from `column` on.
template <class S>
using FinishFunction = void (*)(const CorrelationJob<S>& job, const S* HWY_RESTRICT sums,
                                std::size_t r, std::size_t column, std::size_t count);

template <std::size_t kRows, std::size_t kCols, bool kFused, class S>
void FilterRows(const CorrelationJob<S>& job, const S* const* rows, std::size_t& r,
                const Weights<S>& weights, FinishFunction<S> finish) {
  Lines<S> lines;
  const std::size_t step = weights.cols == 1 ? 1 : job.step;
  for (; r + kRows <= job.count; r += kRows) {
    for (std::size_t column = 0; column < job.width; column += Lines<S>::kColumns) {
      const std::size_t count = std::min(Lines<S>::kColumns, job.width - column);
      SumWindows<S, kRows, kCols, kFused>(rows + r, column, count, step, weights, lines);
      for (std::size_t k = 0; k < kRows; ++k) finish(job, lines.sums[k], r + k, column, count);
    }
  }
}

template <class S>
void SumRows(const CorrelationJob<S>& job) {
  Lines<S> lines;
  for (std::size_t i = job.fresh; i < job.count + job.column.rows - 1; ++i) {
    for (std::size_t column = 0; column < job.width; column += Lines<S>::kColumns) {
      const std::size_t count = std::min(Lines<S>::kColumns, job.width - column);
      SumWindows<S, 1, 0, true>(job.rows + i, column, count, job.step, job.row, lines);
      std::memcpy(job.sums[i] + column, lines.sums[0], count * sizeof(S));
    }
  }
}

template <std::size_t kCols, bool kFused, class S>
void Filter(const CorrelationJob<S>& job, const S* const* rows, const Weights<S>& weights,
            FinishFunction<S> finish) {
  std::size_t r = 0;
  if constexpr (kCols == 3) {
    FilterRows<2, kCols, kFused>(job, rows, r, weights, finish);
  } else if (weights.rows >= kTileRows) {
    FilterRows<kTileRows, kCols, kFused>(job, rows, r, weights, finish);
  }
  FilterRows<1, kCols, kFused>(job, rows, r, weights, finish);
}

template <class S>
HWY_NOINLINE void FilterBandWith(const CorrelationJob<S>& job, FinishFunction<S> finish) {
  if (job.IsSeparable()) {
    SumRows(job);
    return Filter<1, true, S>(job, job.sums, job.column, finish);
  }
  if constexpr (std::is_same_v<S, double>) {
    if (job.is_plain) return Filter<0, false, S>(job, job.rows, job.kernel, finish);
  }
  if (job.kernel.rows == 3) {
    Filter<3, true, S>(job, job.rows, job.kernel, finish);
  } else {
    Filter<0, true, S>(job, job.rows, job.kernel, finish);
  }
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

#include "kernel/correlate.h"

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>

#include "kernel/correlate_bytes.h"
#include "kernel/correlation_job.h"
#include "kernel/correlation_plan.h"
#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/correlate.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/correlate-inl.h"
#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using DoubleTag = SumTag<double>;
using DoubleVec = SumVec<double>;
constexpr DoubleTag kDouble;
constexpr std::size_t kLanes = kSumLanes<double>;

using DoubleJob = CorrelationJob<double>;

// Stores the first `count` lanes of v, at most all, by ConvertElement.
template <class T>
HWY_INLINE void StoreLanes(DoubleVec v, T* to, std::size_t count) {
  using Lane = LaneOf<T>;
  const hn::Rebind<Lane, DoubleTag> d;
  hn::Vec<decltype(d)> result;
  if constexpr (std::same_as<T, double>) {
    result = v;
  } else if constexpr (std::same_as<T, float>) {
    result = hn::DemoteTo(d, v);
  } else if constexpr (std::same_as<T, unsigned int>) {
    // In the last bits of a double of this size stands the whole number itself.
    const DoubleVec limit = hn::Set(kDouble, std::numeric_limits<unsigned int>::max());
    const DoubleVec inside = hn::Min(hn::Max(v, hn::Zero(kDouble)), limit);
    const DoubleVec shifted = hn::Add(hn::Trunc(inside), hn::Set(kDouble, 0x1p52));
    result = hn::TruncateTo(d, hn::BitCast(hn::RebindToUnsigned<DoubleTag>(), shifted));
  } else {
    const hn::Rebind<std::int32_t, DoubleTag> wide;
    const auto number = hn::DemoteTo(wide, hn::IfThenZeroElse(hn::IsNaN(v), v));
    if constexpr (std::same_as<T, int>) {
      result = number;
    } else {
      result = hn::DemoteTo(d, number);
    }
  }
  auto* const lanes = reinterpret_cast<Lane*>(to);
  if (HWY_LIKELY(count >= kLanes)) {
    hn::StoreU(result, d, lanes);
  } else {
    HWY_ALIGN Lane all[kLanes];
    hn::Store(result, d, all);
    std::memcpy(lanes, all, count * sizeof(Lane));
  }
}

template <class T>
HWY_INLINE bool IsSure(const DoubleJob& job, DoubleVec result) {
  if constexpr (std::floating_point<T>) {
    return job.trust == Trust::kFull || hn::AllTrue(kDouble, hn::IsFinite(result));
  }
  if (job.trust == Trust::kFull) return true;
  const auto distance = hn::Abs(hn::Sub(result, hn::Round(result)));
  const auto close = hn::Le(distance, hn::Set(kDouble, job.plan->uncertainty));
  if (HWY_LIKELY(hn::AllFalse(kDouble, close))) return true;
  // Both sides of 0 are truncated to it, and nothing depends on whole numbers out of range.
  const auto half = hn::Set(kDouble, 0.5);
  using Limits = std::numeric_limits<T>;
  const auto below = hn::Lt(result, hn::Set(kDouble, static_cast<double>(Limits::lowest()) - 0.5));
  const auto above = hn::Gt(result, hn::Set(kDouble, static_cast<double>(Limits::max()) + 0.5));
  const auto harmless = hn::Or(hn::Lt(hn::Abs(result), half), hn::Or(below, above));
  return hn::AllFalse(kDouble, hn::AndNot(harmless, close));
}

// Makes results of the sums of `count` columns in row r from `column` on.
template <class T, bool kPairs>
void Finish(const DoubleJob& job, const double* HWY_RESTRICT sums, std::size_t r,
            std::size_t column, std::size_t count) {
  T* const out = static_cast<T*>(job.out) + r * job.width + column;
  for (std::size_t c = 0; c < count; c += kLanes) {
    DoubleVec result = Divided(job, hn::Load(kDouble, sums + c));
    if (HWY_UNLIKELY(!IsSure<T>(job, result))) result = PlainResult(job, r, column + c);
    if constexpr (std::floating_point<T> && !kPairs) {
      // A NaN stays: the processor's minimum and maximum are their second operand then.
      result = hn::Min(hn::Set(kDouble, std::numeric_limits<T>::max()), result);
      result = hn::Max(hn::Set(kDouble, std::numeric_limits<T>::lowest()), result);
    }
    StoreLanes(result, out + c, count - c);
  }
}

template <class T, bool kPairs>
void FilterBand(const DoubleJob& job) {
  FilterBandWith(job, &Finish<T, kPairs>);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

using DoubleJob = CorrelationJob<double>;

struct Pair {
  double re, im;
};

// Cell: what stands in a column, `step` numbers of T that are kept as Kept.
template <class T, class Cell, class Kept>
bool CorrelateCells(MatrixSpan<Cell> x, MatrixSpan<const double> kernel, EdgeMode mode,
                    bool normalise) {
  constexpr bool kPairs = std::same_as<Cell, Pair>;
  constexpr bool kWhole = std::integral<T>;
  const WindowReach reach = WindowReach::Square(kernel.rows, mode);
  if (!reach.Fits(x.rows, x.cols)) return false;
  if (x.IsEmpty()) return true;

  constexpr double kLargest = kWhole ? std::numeric_limits<T>::max() + 1.0 : 0.0;
  const CorrelationPlan plan(kernel, normalise, kWhole, kLargest);
  if constexpr (sizeof(Cell) == 1) {
    if (IsForFloats(plan)) {
      CorrelateBytes(x, reach, plan);
      return true;
    }
  }
  const bool is_plain = kWhole && !plan.exact && !(plan.uncertainty < 0.25);
  DoubleJob job{.plan = &plan,
                .trust = Trust::kFull,
                .is_plain = is_plain,
                .is_whole = kWhole,
                .step = kPairs ? 2 : 1,
                .kernel = {plan.kernel.data(), plan.side, plan.side}};
  if (!plan.row.empty() && !is_plain) {
    job.column = {plan.column.data(), plan.side, 1};
    job.row = {plan.row.data(), 1, plan.side};
  }
  if (kWhole && !plan.exact && !is_plain) job.trust = Trust::kNotWhole;
  if (!kWhole && job.IsSeparable()) job.trust = Trust::kFinite;
  CorrelateBands<Kept>(x, reach, job, VELA_KERNEL_DISPATCH(FilterBand<T, kPairs>));
  return true;
}

}  // namespace

template <Element T>
bool Correlate(MatrixSpan<T> x, MatrixSpan<const double> kernel, EdgeMode mode, bool normalise) {
  return CorrelateCells<T, T, double>(x, kernel, mode, normalise);
}

bool detail::CorrelatePairs(MatrixSpan<double> x, MatrixSpan<const double> kernel, EdgeMode mode,
                            bool normalise) {
  const MatrixSpan<Pair> pairs(reinterpret_cast<Pair*>(x.data), x.rows, x.cols / 2);
  return CorrelateCells<double, Pair, Pair>(pairs, kernel, mode, normalise);
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template bool Correlate(MatrixSpan<T>, MatrixSpan<const double>, EdgeMode, bool);
VELA_KERNEL_FOR_MATRIX_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

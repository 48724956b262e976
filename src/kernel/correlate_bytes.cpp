#include "kernel/correlate_bytes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "kernel/correlation_job.h"
#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/correlate_bytes.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/correlate-inl.h"
#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using FloatJob = CorrelationJob<float>;
using FloatTag = SumTag<float>;
using FloatVec = SumVec<float>;
constexpr FloatTag kFloat;
constexpr std::size_t kFloats = kSumLanes<float>;

template <class T>
constexpr float kLowest = std::numeric_limits<T>::lowest();
template <class T>
constexpr float kHighest = std::numeric_limits<T>::max();

// Where a whole number is so close that rounding may have moved the result across it.
template <class V>
HWY_INLINE auto IsClose(V result, double uncertainty) {
  const hn::DFromV<V> d;
  const auto limit = hn::Set(d, static_cast<hn::TFromV<V>>(uncertainty));
  return hn::Le(hn::Abs(hn::Sub(result, hn::Round(result))), limit);
}

// Where that does not matter: both sides of 0 are truncated to it, and nothing depends on whole
// numbers out of range.
template <class T, class V>
HWY_INLINE auto IsHarmless(V result) {
  const hn::DFromV<V> d;
  const auto below = hn::Lt(result, hn::Set(d, kLowest<T> - 0.5F));
  const auto above = hn::Gt(result, hn::Set(d, kHighest<T> + 0.5F));
  return hn::Or(hn::Lt(hn::Abs(result), hn::Set(d, 0.5F)), hn::Or(below, above));
}

// Whole numbers that elements can hold.
template <class T, class V>
HWY_INLINE V Cut(V result) {
  const hn::DFromV<V> d;
  return hn::Trunc(hn::Min(hn::Max(result, hn::Set(d, kLowest<T>)), hn::Set(d, kHighest<T>)));
}

// One result by doubles: several columns of the window at a time, as long as that leaves no doubt.
template <class T>
HWY_NOINLINE float SettledResult(const FloatJob& job, std::size_t r, std::size_t column) {
  const SumTag<double> d;
  const CorrelationPlan& plan = *job.plan;
  auto sum = hn::Zero(d);
  for (std::size_t i = 0; i < plan.side; ++i) {
    const float* const x = job.rows[r + i] + column;
    const double* const weights = plan.kernel.data() + i * plan.side;
    for (std::size_t j = 0; j < plan.side; j += hn::Lanes(d)) {
      const auto inside = hn::FirstN(d, plan.side - j);
      const auto weight = hn::IfThenElseZero(inside, hn::LoadU(d, weights + j));
      sum = hn::MulAdd(LoadDoubles(d, x + j), weight, sum);
    }
  }
  auto result = Divided(job, hn::SumOfLanes(d, sum));
  if (!plan.exact && !hn::AllFalse(d, IsClose(result, plan.uncertainty))) {
    result = PlainResult(job, r, column);
  }
  return static_cast<float>(hn::GetLane(Cut<T>(result)));
}

// The results of a vector, with those in doubt settled by doubles.
template <class T>
HWY_NOINLINE FloatVec Settled(const FloatJob& job, FloatVec result, std::size_t r,
                              std::size_t column) {
  constexpr std::size_t kSmallSide = 5, kFew = kFloats / 4;
  const auto close = IsClose(result, job.plan->uncertainty_in_floats);
  const auto doubtful = hn::AndNot(IsHarmless<T>(result), close);
  const std::size_t count = hn::CountTrue(kFloat, doubtful);
  if (count == 0) return result;
  HWY_ALIGN float values[kFloats];
  if (count <= kFew && job.plan->side > kSmallSide) {
    HWY_ALIGN float doubts[kFloats];
    hn::Store(hn::IfThenElseZero(doubtful, hn::Set(kFloat, 1.0F)), kFloat, doubts);
    hn::Store(result, kFloat, values);
    for (std::size_t k = 0; k < kFloats; ++k) {
      if (doubts[k] != 0) values[k] = SettledResult<T>(job, r, column + k);
    }
    return hn::Load(kFloat, values);
  }
  const hn::Rebind<float, SumTag<double>> half;
  for (std::size_t k = 0; k < kFloats; k += kSumLanes<double>) {
    hn::Store(hn::DemoteTo(half, Cut<T>(PlainResult(job, r, column + k))), half, values + k);
  }
  return hn::Load(kFloat, values);
}

template <class T>
void Finish(const FloatJob& job, const float* HWY_RESTRICT sums, std::size_t r, std::size_t column,
            std::size_t count) {
  using Lane = LaneOf<T>;
  const hn::Rebind<Lane, FloatTag> d;
  const bool is_sure = job.trust == Trust::kFull;
  const double uncertainty = job.plan->uncertainty_in_floats;
  Lane* const out = static_cast<Lane*>(job.out) + r * job.width + column;
  for (std::size_t c = 0; c < count; c += kFloats) {
    FloatVec result = Divided(job, hn::Load(kFloat, sums + c));
    if (!is_sure && HWY_UNLIKELY(!hn::AllFalse(kFloat, IsClose(result, uncertainty)))) {
      result = Settled<T>(job, result, r, column + c);
    }
    const hn::RebindToSigned<FloatTag> di;
    const auto bytes = hn::DemoteTo(d, hn::ConvertTo(di, Cut<T>(result)));
    if (HWY_LIKELY(c + kFloats <= count)) {
      hn::StoreU(bytes, d, out + c);
    } else {
      HWY_ALIGN Lane all[kFloats];
      hn::Store(bytes, d, all);
      std::memcpy(out + c, all, count - c);
    }
  }
}

template <class T>
void FilterBand(const FloatJob& job) {
  FilterBandWith(job, &Finish<T>);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <class T>
requires(sizeof(T) == 1) void CorrelateBytes(MatrixSpan<T> x, const WindowReach& reach,
                                             const CorrelationPlan& plan) {
  const auto floats = [](const std::vector<double>& values) {
    return std::vector<float>(values.begin(), values.end());
  };
  const std::vector<float> kernel = floats(plan.kernel);
  const std::vector<float> column = floats(plan.column), row = floats(plan.row);
  CorrelationJob<float> job{.plan = &plan,
                            .trust = plan.exact_in_floats ? Trust::kFull : Trust::kNotWhole,
                            .is_whole = true,
                            .kernel = {kernel.data(), plan.side, plan.side}};
  if (!row.empty()) {
    job.column = {column.data(), plan.side, 1};
    job.row = {row.data(), 1, plan.side};
  }
  CorrelateBands<float>(x, reach, job, VELA_KERNEL_DISPATCH(FilterBand<T>));
}

template void CorrelateBytes(MatrixSpan<char>, const WindowReach&, const CorrelationPlan&);
template void CorrelateBytes(MatrixSpan<unsigned char>, const WindowReach&, const CorrelationPlan&);

}  // namespace vela::kernel
#endif

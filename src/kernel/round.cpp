#include "kernel/round.h"

#include "kernel/dispatch.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/round.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// An infinity less itself is NaN, which is not half a unit: it needs no step.
template <class D, class V>
HWY_INLINE V NearestWhole(D d, V x) {
  using T = hn::TFromD<D>;
  const V whole = hn::Trunc(x);
  const auto needs_step = hn::Ge(hn::Abs(hn::Sub(x, whole)), hn::Set(d, T{0.5}));
  const V step = hn::Or(hn::Set(d, T{1}), hn::And(x, hn::SignBit(d)));
  return hn::IfThenElse(needs_step, hn::Add(whole, step), whole);
}

template <Rounding kRounding, class D, class V>
HWY_INLINE V Whole(D d, V x) {
  switch (kRounding) {
    case Rounding::kCeil:
      return hn::Ceil(x);
    case Rounding::kFloor:
      return hn::Floor(x);
    case Rounding::kFix:
      return hn::Trunc(x);
    case Rounding::kRound:
      return NearestWhole(d, x);
  }
}

template <Rounding kRounding, class T>
void RoundLoop(const T* x, T* out, std::size_t count) {
  ForEachVector(out, count, [=](auto d, std::size_t i) HWY_ATTR {
    const auto value = hn::LoadU(d, x + i);
    auto whole = Whole<kRounding>(d, value);
    if constexpr (std::same_as<T, double>) {
      whole = hn::IfThenElse(hn::Eq(value, hn::Set(d, kMissing)), value, whole);
    }
    hn::StoreU(whole, d, out + i);
  });
}

template <class T>
void RoundBy(Rounding rounding, const T* x, T* out, std::size_t count) {
  switch (rounding) {
    case Rounding::kCeil:
      return RoundLoop<Rounding::kCeil>(x, out, count);
    case Rounding::kFloor:
      return RoundLoop<Rounding::kFloor>(x, out, count);
    case Rounding::kFix:
      return RoundLoop<Rounding::kFix>(x, out, count);
    case Rounding::kRound:
      return RoundLoop<Rounding::kRound>(x, out, count);
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <std::floating_point T>
void RoundElements(std::span<const T> x, Rounding rounding, std::span<T> out) {
  VELA_KERNEL_DISPATCH(RoundBy<T>)(rounding, x.data(), out.data(), x.size());
}

template void RoundElements(std::span<const float>, Rounding, std::span<float>);
template void RoundElements(std::span<const double>, Rounding, std::span<double>);

}  // namespace vela::kernel
#endif

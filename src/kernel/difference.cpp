#include "kernel/difference.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "kernel/convert.h"
#include "kernel/dispatch.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/difference.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The saturated difference, without the way through double that gives the same.
template <class D, class V>
HWY_INLINE V DifferenceOf(D d, V later, V earlier) {
  using T = hn::TFromD<D>;
  if constexpr (std::floating_point<T>) {
    return hn::Sub(later, earlier);
  } else if constexpr (sizeof(T) < 4) {
    return hn::SaturatedSub(later, earlier);
  } else if constexpr (std::unsigned_integral<T>) {
    return hn::Sub(hn::Max(later, earlier), earlier);
  } else {
    const V wrapped = hn::Sub(later, earlier);
    // It left the range where the signs of the operands differ and the result took the wrong one.
    const V overflow = hn::And(hn::Xor(later, earlier), hn::Xor(later, wrapped));
    const V limit = hn::Xor(hn::ShiftRight<std::numeric_limits<T>::digits>(later),
                            hn::Set(d, std::numeric_limits<T>::max()));  // of the sign of later
    return hn::IfThenElse(hn::Lt(overflow, hn::Zero(d)), limit, wrapped);
  }
}

// Front to back, so that in place an element is replaced only after its last use.
template <class T, bool kMissingSpreads>
void DifferenceLoop(const T* x, std::size_t lag, T* result, std::size_t count) {
  const auto* const from = reinterpret_cast<const LaneOf<T>*>(x);
  auto* const to = reinterpret_cast<LaneOf<T>*>(result);
  ForEachVector(result, count, [=](auto d, std::size_t i) HWY_ATTR {
    const auto earlier = hn::LoadU(d, from + i);
    const auto later = hn::LoadU(d, from + i + lag);
    auto difference = DifferenceOf(d, later, earlier);
    if constexpr (kMissingSpreads && std::same_as<T, double>) {
      const auto missing = hn::Set(d, kMissing);
      const auto is_missing = hn::Or(hn::Eq(later, missing), hn::Eq(earlier, missing));
      difference = hn::IfThenElse(is_missing, missing, difference);
    }
    hn::StoreU(difference, d, to + i);
  });
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

namespace {

template <bool kMissingSpreads, class T>
void DifferenceOver(std::span<const T> x, std::size_t lag, std::span<T> result) {
  if constexpr (std::integral<T> && sizeof(T) == 8) {
    for (std::size_t i = 0; i < result.size(); ++i) {
      result[i] = ConvertElement<T>(static_cast<double>(x[i + lag]) - static_cast<double>(x[i]));
    }
  } else {
    VELA_KERNEL_DISPATCH(DifferenceLoop<T, kMissingSpreads>)
    (x.data(), lag, result.data(), result.size());
  }
}

}  // namespace

template <Element T>
void Difference(std::span<const T> x, std::span<T> result) {
  DifferenceOver<false>(x, 1, result);
}

template <Element T>
void LaggedDifference(std::span<const T> x, std::size_t lag, std::span<T> result) {
  DifferenceOver<true>(x, lag, result);
}

#define VELA_KERNEL_INSTANTIATE(T)                            \
  template void Difference(std::span<const T>, std::span<T>); \
  template void LaggedDifference(std::span<const T>, std::size_t, std::span<T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

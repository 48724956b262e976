#include "kernel/replace.h"

#include "kernel/dispatch.h"
#include "kernel/element_range.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/replace.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Replaces what matches(d, elements) picks; how many that is.
template <class T, class Matches>
HWY_INLINE std::size_t ReplaceWhere(T* x, std::size_t count, T value, Matches matches) {
  auto* const lanes = reinterpret_cast<LaneOf<T>*>(x);
  std::size_t replaced = 0;
  ForEachVector(x, count, [&](auto d, std::size_t i) HWY_ATTR {
    const auto elements = hn::LoadU(d, lanes + i);
    const auto match = matches(d, elements);
    const auto with = hn::Set(d, static_cast<LaneOf<T>>(value));
    hn::StoreU(hn::IfThenElse(match, with, elements), d, lanes + i);
    replaced += hn::CountTrue(d, match);
  });
  return replaced;
}

template <class T, bool kOutside, bool kKeepMissing>
std::size_t ReplaceByRange(T* x, std::size_t count, ElementRange<T> range, T value) {
  using Lane = LaneOf<T>;
  return ReplaceWhere(x, count, value, [range](auto d, auto elements) HWY_ATTR {
    const auto low = hn::Set(d, static_cast<Lane>(range.low));
    const auto high = hn::Set(d, static_cast<Lane>(range.high));
    auto match = hn::Or(hn::Lt(elements, low), hn::Gt(elements, high));
    if constexpr (!kOutside && std::integral<T>) {
      match = hn::Not(match);
    } else if constexpr (!kOutside) {
      match = hn::And(hn::Ge(elements, low), hn::Le(elements, high));
    }
    if constexpr (kKeepMissing && std::same_as<T, double>) {
      match = hn::And(match, hn::Ne(elements, hn::Set(d, kMissing)));
    }
    return match;
  });
}

template <class T>
std::size_t ReplaceNanLoop(T* x, std::size_t count, T value) {
  return ReplaceWhere(x, count, value,
                      [](auto /*d*/, auto elements) HWY_ATTR { return hn::IsNaN(elements); });
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <Element T>
void ReplaceGreater(std::span<T> x, double threshold, T value) {
  const ElementRange<T> above = ElementsAbove<T>(threshold);
  VELA_KERNEL_DISPATCH(ReplaceByRange<T, false, false>)(x.data(), x.size(), above, value);
}

template <Element T>
void ReplaceLess(std::span<T> x, double threshold, T value) {
  const ElementRange<T> below = ElementsBelow<T>(threshold);
  VELA_KERNEL_DISPATCH(ReplaceByRange<T, false, false>)(x.data(), x.size(), below, value);
}

template <Element T>
std::size_t ReplaceInRange(std::span<T> x, double low, double high, T value, bool outside) {
  const ElementRange<T> range = ElementsBetween<T>(low, high);
  const auto replace = outside ? VELA_KERNEL_DISPATCH(ReplaceByRange<T, true, true>)
                               : VELA_KERNEL_DISPATCH(ReplaceByRange<T, false, true>);
  return replace(x.data(), x.size(), range, value);
}

template <Element T>
void ReplaceNan(std::span<T> x, T value) {
  if constexpr (std::floating_point<T>) {
    VELA_KERNEL_DISPATCH(ReplaceNanLoop<T>)(x.data(), x.size(), value);
  }
}

#define VELA_KERNEL_INSTANTIATE(T)                                               \
  template void ReplaceGreater<T>(std::span<T>, double, T);                      \
  template void ReplaceLess<T>(std::span<T>, double, T);                         \
  template std::size_t ReplaceInRange<T>(std::span<T>, double, double, T, bool); \
  template void ReplaceNan<T>(std::span<T>, T);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

#include "kernel/replace.h"

#include <concepts>
#include <limits>

#include "kernel/dispatch.h"
#include "kernel/element_range.h"
#include "kernel/missing.h"

#ifndef VELA_KERNEL_REPLACE_TYPES
#define VELA_KERNEL_REPLACE_TYPES
namespace vela::kernel {

// The numbers from low to high, or all others; not the one that is kept, NaN for none.
template <class T>
struct FloatingSet {
  T low, high, kept;
};

// The width + 1 integers from low on, modulo the word.
template <class T>
struct IntegerSet {
  T low, width;
};

}  // namespace vela::kernel
#endif

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
  std::size_t replaced = 0;
  ForEachVector(x, count, [&](auto d, std::size_t i) HWY_ATTR {
    const auto elements = hn::LoadU(d, x + i);
    const auto match = matches(d, elements);
    hn::StoreU(hn::IfThenElse(match, hn::Set(d, value), elements), d, x + i);
    replaced += hn::CountTrue(d, match);
  });
  return replaced;
}

template <class T, bool kOutside>
std::size_t ReplaceFloating(T* x, std::size_t count, FloatingSet<T> set, T value) {
  return ReplaceWhere(x, count, value, [set](auto d, auto elements) HWY_ATTR {
    const auto low = hn::Set(d, set.low), high = hn::Set(d, set.high);
    auto match = hn::Or(hn::Lt(elements, low), hn::Gt(elements, high));
    if constexpr (!kOutside) match = hn::And(hn::Ge(elements, low), hn::Le(elements, high));
    return hn::AndNot(hn::Eq(elements, hn::Set(d, set.kept)), match);
  });
}

template <class T>
std::size_t ReplaceIntegers(T* x, std::size_t count, IntegerSet<T> set, T value) {
  return ReplaceWhere(x, count, value, [set](auto d, auto elements) HWY_ATTR {
    const auto from_low = hn::Sub(elements, hn::Set(d, set.low));
    return hn::Not(hn::Gt(from_low, hn::Set(d, set.width)));
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

namespace {

// Replaces the integers of a range, or all others. They are of every type by how far they are from
// the lowest, so that the others are a range as well.
template <std::integral T>
std::size_t ReplaceRange(std::span<T> x, ElementRange<T> range, bool outside, T value) {
  using Bits = hwy::UnsignedFromSize<sizeof(T)>;
  constexpr Bits kAll = std::numeric_limits<Bits>::max();
  const bool is_empty = range.IsEmpty();
  const auto low = static_cast<Bits>(is_empty ? 0 : range.low);
  const auto width = static_cast<Bits>(is_empty ? kAll : static_cast<Bits>(range.high) - low);
  outside = outside != is_empty;
  if (outside && width == kAll) return 0;
  const IntegerSet<Bits> inside_set{low, width};
  const IntegerSet<Bits> outside_set{static_cast<Bits>(low + width + 1),
                                     static_cast<Bits>(kAll - width - 1)};
  return VELA_KERNEL_DISPATCH(ReplaceIntegers<Bits>)(reinterpret_cast<Bits*>(x.data()), x.size(),
                                                     outside ? outside_set : inside_set,
                                                     static_cast<Bits>(value));
}

template <std::floating_point T>
std::size_t ReplaceRange(std::span<T> x, ElementRange<T> range, bool outside, T value,
                         T kept = std::numeric_limits<T>::quiet_NaN()) {
  const auto replace = outside ? VELA_KERNEL_DISPATCH(ReplaceFloating<T, true>)
                               : VELA_KERNEL_DISPATCH(ReplaceFloating<T, false>);
  return replace(x.data(), x.size(), FloatingSet<T>{range.low, range.high, kept}, value);
}

}  // namespace

template <Element T>
void ReplaceGreater(std::span<T> x, double threshold, T value) {
  ReplaceRange(x, ElementsAbove<T>(threshold), false, value);
}

template <Element T>
void ReplaceLess(std::span<T> x, double threshold, T value) {
  ReplaceRange(x, ElementsBelow<T>(threshold), false, value);
}

template <Element T>
std::size_t ReplaceInRange(std::span<T> x, double low, double high, T value, bool outside) {
  const ElementRange<T> range = ElementsBetween<T>(low, high);
  if constexpr (std::same_as<T, double>) return ReplaceRange(x, range, outside, value, kMissing);
  return ReplaceRange(x, range, outside, value);
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

#include "kernel/difference.h"

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "kernel/convert.h"
#include "kernel/dispatch.h"
#include "kernel/line_start.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/difference.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {

// Through double and saturating, or in integers where those give the same: a compiler makes better
// vector code of them.
template <class T>
T DifferenceOf(T later, T earlier) {
  using Limits = std::numeric_limits<T>;
  if constexpr (std::same_as<T, std::uint32_t>) {
    return later >= earlier ? later - earlier : 0;
  } else if constexpr (std::same_as<T, std::int32_t>) {
    const auto wrapped =
        static_cast<T>(static_cast<std::uint32_t>(later) - static_cast<std::uint32_t>(earlier));
    // It left the range where the signs of the operands differ and the result took the wrong one.
    const bool overflows = ((later ^ earlier) & (later ^ wrapped)) < 0;
    const T limit = (later >> Limits::digits) ^ Limits::max();  // of the sign of later
    return overflows ? limit : wrapped;
  } else if constexpr (std::integral<T> && sizeof(T) < 4) {
    return static_cast<T>(std::clamp<int>(later - earlier, Limits::min(), Limits::max()));
  } else {
    return ConvertElement<T>(static_cast<double>(later) - static_cast<double>(earlier));
  }
}

// Front to back, so that in place an element is replaced only after its last use.
template <class T>
void InPlaceLoop(T* x, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) x[i] = DifferenceOf(x[i + 1], x[i]);
}

template <class T>
void ApartLoop(const T* HWY_RESTRICT x, T* HWY_RESTRICT result, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) result[i] = DifferenceOf(x[i + 1], x[i]);
}

template <class T>
void DifferenceLoop(const T* x, T* result, std::size_t count) {
  const std::size_t lead = ElementsBeforeLine(result, count);
  if (x == result) {
    InPlaceLoop(result, lead);
    InPlaceLoop(result + lead, count - lead);
  } else {
    ApartLoop(x, result, lead);
    ApartLoop(x + lead, result + lead, count - lead);
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <Element T>
void Difference(std::span<const T> x, std::span<T> result) {
  VELA_KERNEL_DISPATCH(DifferenceLoop<T>)(x.data(), result.data(), result.size());
}

#define VELA_KERNEL_INSTANTIATE(T) template void Difference(std::span<const T>, std::span<T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

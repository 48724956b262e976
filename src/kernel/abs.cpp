#include "kernel/abs.h"

#include <concepts>
#include <cstddef>
#include <limits>

#include "kernel/dispatch.h"
#include "kernel/line_start.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/abs.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {

// Without branches, so that the loop becomes vector code.
template <class T>
T AbsOf(T value) {
  if constexpr (std::unsigned_integral<T>) {
    return value;
  } else if constexpr (std::floating_point<T>) {
    return (value < 0) & !IsMissing(value) ? -value : value;
  } else {
    const T low = value == std::numeric_limits<T>::min() ? static_cast<T>(value + 1) : value;
    return low < 0 ? static_cast<T>(-low) : low;
  }
}

template <class T>
void AbsLoop(T* x, std::size_t count) {
  const std::size_t lead = ElementsBeforeLine(x, count);
  for (std::size_t i = 0; i < lead; ++i) x[i] = AbsOf(x[i]);
  for (std::size_t i = lead; i < count; ++i) x[i] = AbsOf(x[i]);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <Element T>
void Abs(std::span<T> x) {
  VELA_KERNEL_DISPATCH(AbsLoop<T>)(x.data(), x.size());
}

#define VELA_KERNEL_INSTANTIATE(T) template void Abs(std::span<T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

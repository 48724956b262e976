// The walk over elements that a kernel replaces one by one.
// Compiled once for each instruction set: the guard lets it in again for the next.

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <hwy/highway.h>
#include <type_traits>

#include "kernel/line_start.h"

#if defined(VELA_KERNEL_ELEMENTWISE_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef VELA_KERNEL_ELEMENTWISE_TOGGLE
#undef VELA_KERNEL_ELEMENTWISE_TOGGLE
#else
#define VELA_KERNEL_ELEMENTWISE_TOGGLE
#endif

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

// Highway's lane type for an element type.
template <class T>
using LaneOf = std::conditional_t<std::same_as<T, char>, std::int8_t, T>;

// Calls step(d, i) for vectors of elements from i on, as many as d has lanes, that cover 0 .. count
// - 1 once: whole vectors stored to target + i are aligned, single elements come before and after
// them.
template <class T, class Step>
HWY_INLINE void ForEachVector(const T* target, std::size_t count, Step step) {
  namespace hn = hwy::HWY_NAMESPACE;
  const hn::ScalableTag<LaneOf<T>> d;
  const hn::CappedTag<LaneOf<T>, 1> one;
  const std::size_t lead = ElementsBeforeLine(target, count);
  // With one call for the elements at both ends, because each is compiled in place.
  for (std::size_t i = 0; i < count; ++i) {
    if (i >= lead) {
      for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) step(d, i);
      if (i == count) break;
    }
    step(one, i);
  }
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

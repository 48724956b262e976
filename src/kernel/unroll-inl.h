// Loops over registers.
// Compiled once for each instruction set: the guard lets it in again for the next.

#include <cstddef>
#include <hwy/highway.h>
#include <type_traits>
#include <utility>

#if defined(VELA_KERNEL_UNROLL_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef VELA_KERNEL_UNROLL_TOGGLE
#undef VELA_KERNEL_UNROLL_TOGGLE
#else
#define VELA_KERNEL_UNROLL_TOGGLE
#endif

/// The attributes of a lambda for Unroll.
#define VELA_KERNEL_UNROLLED HWY_ATTR __attribute__((always_inline))

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

template <class F, std::size_t... k>
HWY_INLINE void UnrollOver(std::index_sequence<k...> /*all*/, const F& f) {
  (f(std::integral_constant<std::size_t, k>()), ...);
}

// Calls f(k) for k = 0 .. kCount - 1, as constants. g++ keeps an array of vectors in registers only
// where this indexes it: it unrolls its own loops too late.
template <std::size_t kCount, class F>
HWY_INLINE void Unroll(const F& f) {
  UnrollOver(std::make_index_sequence<kCount>(), f);
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

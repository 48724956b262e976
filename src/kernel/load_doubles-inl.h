// Loads of elements as vectors of doubles.
// Compiled once for each instruction set: the guard lets it in again for the next.

#include <concepts>
#include <hwy/highway.h>

#if defined(VELA_KERNEL_LOAD_DOUBLES_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef VELA_KERNEL_LOAD_DOUBLES_TOGGLE
#undef VELA_KERNEL_LOAD_DOUBLES_TOGGLE
#else
#define VELA_KERNEL_LOAD_DOUBLES_TOGGLE
#endif

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

// As many elements from x on as d has lanes; T is double, float or a 32-bit int.
template <class D, class T>
HWY_INLINE hwy::HWY_NAMESPACE::Vec<D> LoadDoubles(D d, const T* x) {
  namespace hn = hwy::HWY_NAMESPACE;
  if constexpr (std::same_as<T, double>) {
    return hn::LoadU(d, x);
  } else {
    return hn::PromoteTo(d, hn::LoadU(hn::Rebind<T, D>(), x));
  }
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

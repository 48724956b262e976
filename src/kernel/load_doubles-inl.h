// Loads of elements as vectors of doubles, compiled once for each instruction set of a file that
// includes it. Without an include guard for that reason.

#include <concepts>
#include <hwy/highway.h>

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

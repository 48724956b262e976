// The body of VectorSort, compiled once for each instruction set of a file that includes it.
// Without an include guard for that reason.

#include <cstddef>
#include <hwy/contrib/sort/traits-inl.h>
#include <hwy/contrib/sort/traits128-inl.h>
#include <hwy/contrib/sort/vqsort-inl.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

template <class T>
void SortKeys(T* keys, std::size_t n) {
  namespace hn = hwy::HWY_NAMESPACE;
  using Ascending = hn::detail::TraitsLane<hn::detail::OrderAscending<T>>;
  hn::Sort(hn::SortTag<T>(), hn::detail::SharedTraits<Ascending>(), keys, n,
           static_cast<T*>(nullptr));
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

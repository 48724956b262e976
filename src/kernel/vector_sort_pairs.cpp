#include "kernel/vector_sort.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/vector_sort_pairs.cpp"
#include <hwy/foreach_target.h>

#include "kernel/vector_sort-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

void SortUnsigned128(hwy::uint128_t* keys, std::size_t n) {
  namespace hn = hwy::HWY_NAMESPACE;
  using Ascending = hn::detail::Traits128<hn::detail::OrderAscending128>;
  // Vectors of two lanes a key.
  hn::Sort(hn::SortTag<std::uint64_t>(), hn::detail::SharedTraits<Ascending>(),
           reinterpret_cast<std::uint64_t*>(keys), n * 2, static_cast<std::uint64_t*>(nullptr));
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vela::kernel {

HWY_EXPORT(SortUnsigned128);

void VectorSort(WideKey* keys, std::size_t n) {
  static_assert(sizeof(WideKey) == sizeof(hwy::uint128_t));
  HWY_DYNAMIC_DISPATCH(SortUnsigned128)(reinterpret_cast<hwy::uint128_t*>(keys), n);
}

}  // namespace vela::kernel
#endif

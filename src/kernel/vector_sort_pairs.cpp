#include <algorithm>

#include "kernel/vector_sort.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/vector_sort_pairs.cpp"
#include <hwy/foreach_target.h>

#include "kernel/vector_sort-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

void SortWideKeys(WideKey* keys, std::size_t n) {
#if VQSORT_ENABLED
  namespace hn = hwy::HWY_NAMESPACE;
  using Ascending = hn::detail::Traits128<hn::detail::OrderAscending128>;
  static_assert(sizeof(WideKey) == sizeof(hwy::uint128_t));
  // Vectors of two lanes a key.
  hn::Sort(hn::SortTag<std::uint64_t>(), hn::detail::SharedTraits<Ascending>(),
           reinterpret_cast<std::uint64_t*>(keys), n * 2, static_cast<std::uint64_t*>(nullptr));
#else
  std::sort(keys, keys + n);  // an instruction set without the vectors it takes
#endif
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace vela::kernel {

HWY_EXPORT(SortWideKeys);

void VectorSort(WideKey* keys, std::size_t n) { HWY_DYNAMIC_DISPATCH(SortWideKeys)(keys, n); }

}  // namespace vela::kernel
#endif

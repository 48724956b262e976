// SortKeys, compiled once for each instruction set of a file that includes it. Without an include
// guard for that reason.

#include <algorithm>
#include <cstddef>
#include <hwy/highway.h>

#include "kernel/vector_sort.h"

// Highway's vector quicksort is compiled with its user by means of parts that its interface does
// not promise: they are used in the version that they are known from, and with any other the
// standard library sorts.
#ifndef VELA_KERNEL_HIGHWAY_SORTS
#define VELA_KERNEL_HIGHWAY_SORTS (HWY_MAJOR == 1 && HWY_MINOR == 0)
#endif

#if VELA_KERNEL_HIGHWAY_SORTS

#if HWY_TARGET == HWY_AVX3
// Some AVX-512 processors compress lanes into memory so slowly that sorting takes several times as
// long; into a register they all do it quickly. The sort picks these overloads over the library's.
HWY_BEFORE_NAMESPACE();
namespace hwy::HWY_NAMESPACE {

template <class T>
HWY_INLINE std::size_t CompressInRegister(Vec512<T> v, Mask512<T> mask, T* to) {
  const Full512<T> d;
  const std::size_t count = CountTrue(d, mask);
  BlendedStore(Compress(v, mask), FirstN(d, count), d, to);
  return count;
}

HWY_INLINE std::size_t CompressStore(Vec512<std::int32_t> v, Mask512<std::int32_t> mask,
                                     Full512<std::int32_t> /*d*/, std::int32_t* to) {
  return CompressInRegister(v, mask, to);
}

}  // namespace hwy::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#include <hwy/contrib/sort/traits-inl.h>
#include <hwy/contrib/sort/traits128-inl.h>
#include <hwy/contrib/sort/vqsort-inl.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

template <class T>
void SortKeys(T* keys, std::size_t n) {
  using Ascending = hn::detail::TraitsLane<hn::detail::OrderAscending<T>>;
  hn::Sort(hn::SortTag<T>(), hn::detail::SharedTraits<Ascending>(), keys, n,
           static_cast<T*>(nullptr));
}

inline void SortKeys(WideKey* keys, std::size_t n) {
  using Ascending = hn::detail::Traits128<hn::detail::OrderAscending128>;
  static_assert(sizeof(WideKey) == sizeof(hwy::uint128_t));
  // Vectors of two lanes a key.
  hn::Sort(hn::SortTag<std::uint64_t>(), hn::detail::SharedTraits<Ascending>(),
           reinterpret_cast<std::uint64_t*>(keys), n * 2, static_cast<std::uint64_t*>(nullptr));
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#else

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

template <class T>
void SortKeys(T* keys, std::size_t n) {
  std::sort(keys, keys + n);
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

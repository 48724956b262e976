#include <bit>
#include <cstring>
#include <limits>

#include "kernel/vector_sort.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/vector_sort_wide.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#if HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX3_DL
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

HWY_INLINE std::size_t CompressStore(Vec512<std::uint32_t> v, Mask512<std::uint32_t> mask,
                                     Full512<std::uint32_t> /*d*/, std::uint32_t* to) {
  return CompressInRegister(v, mask, to);
}

}  // namespace hwy::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#include "kernel/vector_sort-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

void SortSigned32(std::int32_t* keys, std::size_t n) { SortKeys(keys, n); }
void SortUnsigned32(std::uint32_t* keys, std::size_t n) { SortKeys(keys, n); }
void SortSigned64(std::int64_t* keys, std::size_t n) { SortKeys(keys, n); }
void SortUnsigned64(std::uint64_t* keys, std::size_t n) { SortKeys(keys, n); }

// Turns the bits of a number, which have sign and magnitude, into an integer of the same order, and
// back.
template <class Bits>
constexpr Bits FlipMagnitude(Bits bits) {
  return bits < 0 ? bits ^ std::numeric_limits<Bits>::max() : bits;
}

// Floating values are sorted as integers: the sort compares those faithfully, while it loses
// infinities and the signs of zeros.
template <class T, class Bits>
void SortFloating(T* values, std::size_t n, bool ascending) {
  constexpr Bits kInfinity = std::bit_cast<Bits>(std::numeric_limits<T>::infinity());
  const Bits direction = ascending ? 0 : -1;
  Bits* const keys = reinterpret_cast<Bits*>(values);
  for (std::size_t i = 0; i < n; ++i) {
    const Bits magnitude = keys[i] & std::numeric_limits<Bits>::max();
    keys[i] = magnitude > kInfinity ? magnitude : FlipMagnitude(keys[i]) ^ direction;
  }
  SortKeys(keys, n);
  for (std::size_t i = 0; i < n; ++i) {
    keys[i] = keys[i] > kInfinity ? keys[i] : FlipMagnitude<Bits>(keys[i] ^ direction);
  }
}

void SortFloats(float* values, std::size_t n, bool ascending) {
  SortFloating<float, std::int32_t>(values, n, ascending);
}

void SortDoubles(double* values, std::size_t n, bool ascending) {
  SortFloating<double, std::int64_t>(values, n, ascending);
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

// The seed for choosing pivots. The one of Highway's compiled library asks the system for random
// bytes, which takes as long as sorting a hundred elements.
void hwy::Sorter::Fill24Bytes(const void* heap, size_t num, void* bytes) {
  const std::uint64_t seed[3] = {std::bit_cast<std::uintptr_t>(heap), num, 0x9E3779B97F4A7C15};
  std::memcpy(bytes, seed, sizeof(seed));
}

namespace vela::kernel {

HWY_EXPORT(SortSigned32);
HWY_EXPORT(SortUnsigned32);
HWY_EXPORT(SortSigned64);
HWY_EXPORT(SortUnsigned64);
HWY_EXPORT(SortFloats);
HWY_EXPORT(SortDoubles);

void VectorSort(std::int32_t* keys, std::size_t n) { HWY_DYNAMIC_DISPATCH(SortSigned32)(keys, n); }

void VectorSort(std::uint32_t* keys, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(SortUnsigned32)(keys, n);
}

void VectorSort(std::int64_t* keys, std::size_t n) { HWY_DYNAMIC_DISPATCH(SortSigned64)(keys, n); }

void VectorSort(std::uint64_t* keys, std::size_t n) {
  HWY_DYNAMIC_DISPATCH(SortUnsigned64)(keys, n);
}

void VectorSort(float* values, std::size_t n, bool ascending) {
  HWY_DYNAMIC_DISPATCH(SortFloats)(values, n, ascending);
}

void VectorSort(double* values, std::size_t n, bool ascending) {
  HWY_DYNAMIC_DISPATCH(SortDoubles)(values, n, ascending);
}

}  // namespace vela::kernel
#endif

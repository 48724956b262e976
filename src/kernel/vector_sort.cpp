#include "kernel/vector_sort.h"

#include <bit>
#include <concepts>
#include <cstring>
#include <limits>
#include <type_traits>

#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/vector_sort.cpp"
#endif
#include <hwy/foreach_target.h>

#include "kernel/vector_sort-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

// Sorts only signed keys: each further type of keys would take seconds to compile. Unsigned numbers
// are in the order of signed ones once their highest bit is flipped.
template <std::unsigned_integral T>
void FlipHighest(T* keys, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    keys[i] = static_cast<T>(keys[i] ^ T{1} << (std::numeric_limits<T>::digits - 1));
  }
}

template <class T>
void SortIntegers(T* keys, std::size_t n) {
#if HWY_TARGET == HWY_AVX3
  // Some processors compress 16-bit lanes so slowly that AVX2 is several times as fast.
  if constexpr (sizeof(T) == 2) return N_AVX2::SortIntegers(keys, n);
#endif
  if constexpr (std::signed_integral<T>) {
    SortKeys(keys, n);
  } else {
    FlipHighest(keys, n);
    SortKeys(reinterpret_cast<std::make_signed_t<T>*>(keys), n);
    FlipHighest(keys, n);
  }
}

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

void SortWide(WideKey* keys, std::size_t n) { SortKeys(keys, n); }

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#if VELA_KERNEL_HIGHWAY_SORTS
// The seed for choosing pivots. The one of Highway's compiled library asks the system for random
// bytes, which takes as long as sorting a hundred elements.
void hwy::Sorter::Fill24Bytes(const void* heap, size_t num, void* bytes) {
  const std::uint64_t seed[3] = {std::bit_cast<std::uintptr_t>(heap), num, 0x9E3779B97F4A7C15};
  std::memcpy(bytes, seed, sizeof(seed));
}
#endif

namespace vela::kernel {

void VectorSort(std::int16_t* keys, std::size_t n) {
  VELA_KERNEL_DISPATCH(SortIntegers<std::int16_t>)(keys, n);
}

void VectorSort(std::uint16_t* keys, std::size_t n) {
  VELA_KERNEL_DISPATCH(SortIntegers<std::uint16_t>)(keys, n);
}

void VectorSort(std::int32_t* keys, std::size_t n) {
  VELA_KERNEL_DISPATCH(SortIntegers<std::int32_t>)(keys, n);
}

void VectorSort(std::uint32_t* keys, std::size_t n) {
  VELA_KERNEL_DISPATCH(SortIntegers<std::uint32_t>)(keys, n);
}

void VectorSort(std::int64_t* keys, std::size_t n) {
  VELA_KERNEL_DISPATCH(SortIntegers<std::int64_t>)(keys, n);
}

void VectorSort(std::uint64_t* keys, std::size_t n) {
  VELA_KERNEL_DISPATCH(SortIntegers<std::uint64_t>)(keys, n);
}

void VectorSort(float* values, std::size_t n, bool ascending) {
  VELA_KERNEL_DISPATCH(SortFloating<float, std::int32_t>)(values, n, ascending);
}

void VectorSort(double* values, std::size_t n, bool ascending) {
  VELA_KERNEL_DISPATCH(SortFloating<double, std::int64_t>)(values, n, ascending);
}

void VectorSort(WideKey* keys, std::size_t n) { VELA_KERNEL_DISPATCH(SortWide)(keys, n); }

}  // namespace vela::kernel
#endif

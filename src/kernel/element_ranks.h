#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <numeric>
#include <span>

#include "kernel/element_types.h"
#include "kernel/padded_bands.h"
#include "kernel/vector_sort.h"

namespace vela::kernel {

/// A number that orders elements as they are sorted: NaNs are equal and last.
template <Element T>
std::uint64_t OrderKey(T value) {
  if constexpr (std::floating_point<T>) {
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    if (std::isnan(value)) return std::numeric_limits<Bits>::max();
    const Bits bits = std::bit_cast<Bits>(value), sign = Bits{1} << (sizeof(T) * 8 - 1);
    return bits & sign ? static_cast<Bits>(~bits) : bits | sign;
  } else {
    return static_cast<std::uint64_t>(std::int64_t{value} - std::numeric_limits<T>::min());
  }
}

/// Ranks of up to `capacity` elements: to each its own, equal ones in any order. O(n log n), with
/// 16 bytes of scratch and a copy for each element. Not for the 64-bit integers.
template <Element T>
class ElementRanks {
 public:
  /// Throws std::bad_alloc, also for 2^32 elements and more.
  explicit ElementRanks(std::size_t capacity)
      : keys_(new std::uint64_t[Checked(capacity)]),
        ranks_(new std::uint32_t[capacity]),
        sorted_(new T[capacity]) {}

  /// Ranks the elements, at most `capacity`.
  void Assign(std::span<const T> elements) {
    const std::size_t count = elements.size();
    const int bits = kIsWide ? std::bit_width(count) : 32;
    const std::uint64_t position = (std::uint64_t{1} << bits) - 1;
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint64_t key = OrderKey(elements[i]);
      keys_[i] = (kIsWide ? key & ~position : key << 32) | i;
    }
    VectorSort(keys_.get(), count);
    if constexpr (kIsWide) SortTies(elements, bits);
    for (std::size_t k = 0; k < count; ++k) {
      const std::size_t i = keys_[k] & position;
      ranks_[i] = static_cast<std::uint32_t>(k);
      sorted_[k] = elements[i];
    }
  }

  /// The ranks of the elements, and the element of each rank.
  const std::uint32_t* Ranks() const { return ranks_.get(); }
  const T* Sorted() const { return sorted_.get(); }

 private:
  // An element's key is sorted with its number in the low bits.
  static constexpr bool kIsWide = sizeof(T) == 8;

  static std::size_t Checked(std::size_t capacity) {
    if (capacity > std::numeric_limits<std::uint32_t>::max()) throw std::bad_alloc();
    return capacity;
  }

  // Sorts the elements whose keys differ only in the bits that gave way to their numbers.
  void SortTies(std::span<const T> elements, int bits) {
    const std::size_t count = elements.size();
    const std::uint64_t position = (std::uint64_t{1} << bits) - 1;
    const auto key = [&](std::uint64_t k) { return OrderKey(elements[k & position]); };
    for (std::size_t begin = 0, end; begin < count; begin = end) {
      bool differ = false;
      for (end = begin + 1; end < count && keys_[end] >> bits == keys_[begin] >> bits; ++end) {
        differ = differ || key(keys_[end]) != key(keys_[begin]);
      }
      if (!differ) continue;
      std::sort(keys_.get() + begin, keys_.get() + end,
                [&](std::uint64_t a, std::uint64_t b) { return key(a) < key(b); });
    }
  }

  std::unique_ptr<std::uint64_t[]> keys_;
  std::unique_ptr<std::uint32_t[]> ranks_;
  std::unique_ptr<T[]> sorted_;
};

/// Which elements of a sorted window its median is made of: `low`, or the mean of `low` and
/// `low` + 1.
struct MedianPlace {
  explicit MedianPlace(std::uint64_t count) : low(count / 2), is_mean(count % 2 == 0) {}

  template <Element T>
  static T Mean(T a, T b) {
    return ConvertElement<T>(std::midpoint(static_cast<double>(a), static_cast<double>(b)));
  }

  std::uint64_t low;
  bool is_mean;
};

}  // namespace vela::kernel

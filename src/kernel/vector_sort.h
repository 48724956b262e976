#pragma once

#include <cstddef>
#include <cstdint>

namespace vela::kernel {

/// Sorts keys[0 .. n) ascending by vector quicksort, in place and without scratch memory.
void VectorSort(std::int16_t* keys, std::size_t n);
void VectorSort(std::uint16_t* keys, std::size_t n);
void VectorSort(std::int32_t* keys, std::size_t n);
void VectorSort(std::uint32_t* keys, std::size_t n);
void VectorSort(std::int64_t* keys, std::size_t n);
void VectorSort(std::uint64_t* keys, std::size_t n);

/// As above, in either order. All bits survive but the signs of NaNs, which come last in both
/// orders; -0.0 is less than 0.0.
void VectorSort(float* values, std::size_t n, bool ascending);
void VectorSort(double* values, std::size_t n, bool ascending);

/// A number of 128 bits.
struct WideKey {
  std::uint64_t low;
  std::uint64_t high;

  friend bool operator<(const WideKey& a, const WideKey& b) {
    return a.high != b.high ? a.high < b.high : a.low < b.low;
  }
};
void VectorSort(WideKey* keys, std::size_t n);

}  // namespace vela::kernel

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

}  // namespace vela::kernel

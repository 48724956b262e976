#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vela::kernel {

/// How many of the `count` elements at data come before the first that starts a cache line. Vectors
/// that straddle two lines are slow to store, so a long loop does these first.
template <class T>
std::size_t ElementsBeforeLine(const T* data, std::size_t count) {
  constexpr std::size_t kLine = 64;
  const std::size_t misplaced = reinterpret_cast<std::uintptr_t>(data) % kLine;
  return std::min(count, (kLine - misplaced) % kLine / sizeof(T));
}

}  // namespace vela::kernel

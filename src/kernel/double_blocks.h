#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kernel/convert.h"

namespace vela::kernel {

/// Elements per block: few enough to stay in the first-level cache, enough to hide the work per
/// block.
inline constexpr std::size_t kBlockSize = 1024;

/// Calls visit(block, offset) for consecutive blocks of at most kBlockSize elements of x, in place,
/// until it returns false.
template <class T, class Visit>
void ForEachBlock(std::span<const T> x, Visit visit) {
  for (std::size_t offset = 0; offset < x.size(); offset += kBlockSize) {
    if (!visit(x.subspan(offset, std::min(kBlockSize, x.size() - offset)), offset)) return;
  }
}

/// As ForEachBlock, with the elements read as doubles: doubles are passed in place, other types
/// through a buffer on the stack.
template <class T, class Visit>
void ForEachDoubleBlock(std::span<const T> x, Visit visit) {
  if constexpr (std::same_as<T, double>) {
    ForEachBlock(x, visit);
  } else {
    std::array<double, kBlockSize> buffer;
    ForEachBlock(x, [&](std::span<const T> block, std::size_t offset) {
      const std::span<double> values = std::span(buffer).first(block.size());
      Convert<double, T>(block, values);
      return visit(std::span<const double>(values), offset);
    });
  }
}

/// The types whose vectors become doubles as they are loaded.
template <class T>
concept LoadsAsDouble =
    std::same_as<T, double> || std::same_as<T, float> || std::same_as<T, std::int32_t>;

/// As ForEachDoubleBlock, but passes blocks of every type that LoadsAsDouble in place.
template <class T, class Visit>
void ForEachLoadableBlock(std::span<const T> x, Visit visit) {
  if constexpr (LoadsAsDouble<T>) {
    ForEachBlock(x, visit);
  } else {
    ForEachDoubleBlock(x, visit);
  }
}

}  // namespace vela::kernel

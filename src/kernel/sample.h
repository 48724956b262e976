#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kernel/random.h"

namespace vela::kernel {

/// Fills x with elements of source, each equally likely at each place and drawn anew. source has
/// less than 2^32 elements, and at least one unless x is empty; the two do not overlap.
template <class T>
void Sample(std::span<const T> source, RandomSource& random, std::span<T> x) {
  std::array<std::uint32_t, 1024> indices;
  while (!x.empty()) {
    const std::span<std::uint32_t> drawn =
        std::span(indices).first(std::min(indices.size(), x.size()));
    random.FillIndices(drawn, static_cast<std::uint32_t>(source.size()));
    for (std::size_t i = 0; i < drawn.size(); ++i) x[i] = source[drawn[i]];
    x = x.subspan(drawn.size());
  }
}

}  // namespace vela::kernel

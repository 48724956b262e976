#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kernel/find.h"
#include "kernel/find_complex.h"
#include "kernel/matrix_span.h"

namespace vela::kernel {

/// Finds the elements from low to high as FindInRange does, in row-major order, and returns how
/// many they are. Their rows and columns are passed to visit(rows, cols), two spans of equal size,
/// some thousands at a time. Rows and columns number at most 2^32 each. One pass, no allocation.
template <class T, class Bound, class Visit>
std::size_t FindPositions(MatrixSpan<const T> x, const Bound& low, const Bound& high, Visit visit) {
  constexpr std::size_t kBlock = 4096;
  std::array<std::uint32_t, kBlock> rows, cols;
  const std::span<const T> values = x.Values();
  std::size_t count = 0;
  std::size_t row = 0;
  std::size_t row_begin = 0;
  for (std::size_t begin = 0; begin < values.size(); begin += kBlock) {
    const std::span<const T> block = values.subspan(begin, std::min(kBlock, values.size() - begin));
    const std::size_t found = FindInRange(block, low, high, {}, std::span(cols));
    for (std::size_t k = 0; k < found; ++k) {
      const std::size_t position = begin + cols[k];
      for (; position - row_begin >= x.cols; row_begin += x.cols) ++row;
      rows[k] = static_cast<std::uint32_t>(row);
      cols[k] = static_cast<std::uint32_t>(position - row_begin);
    }
    if (found > 0) {
      visit(std::span<const std::uint32_t>(rows).first(found),
            std::span<const std::uint32_t>(cols).first(found));
    }
    count += found;
  }
  return count;
}

}  // namespace vela::kernel

#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "kernel/complex_parts.h"
#include "kernel/element_types.h"
#include "kernel/matrix_span.h"

namespace vela::kernel {

/// The sum of each column's elements that are not missing, 0 without any; sums.size() is x.cols. Of
/// doubles and as accurate as Sum. A sum on the way that exceeds the range of doubles stays
/// infinite and a NaN makes the sum NaN. One pass, no allocation.
template <Element T>
void SumColumns(MatrixSpan<const T> x, std::span<double> sums);

/// The same of complex elements, added plainly.
template <Complex Z>
void SumColumns(MatrixSpan<const Z> x, std::span<Z> sums) {
  std::fill(sums.begin(), sums.end(), Z{0.0, 0.0});
  for (std::size_t row = 0; row < x.rows; ++row) {
    for (std::size_t col = 0; col < x.cols; ++col) {
      if (!IsMissing(x(row, col))) sums[col] = sums[col] + x(row, col);
    }
  }
}

}  // namespace vela::kernel

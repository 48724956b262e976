// Windows of a matrix, found the plain way.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "kernel/edge_mode.h"
#include "kernel/matrix_span.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {

#define VELA_KERNEL_LIST_ENTRY(T) , T
using MatrixElementTypes =
    TestTypesOf<detail::Rest<void VELA_KERNEL_FOR_MATRIX_TYPES(VELA_KERNEL_LIST_ENTRY)>>::Types;
#undef VELA_KERNEL_LIST_ENTRY

template <class T>
struct Grid {
  std::size_t rows, cols;
  std::vector<T> values;

  Grid(std::size_t row_count, std::size_t col_count, std::vector<T> elements)
      : rows(row_count), cols(col_count), values(std::move(elements)) {}
  MatrixSpan<T> Span() { return {values.data(), rows, cols}; }
  MatrixSpan<const T> Const() const { return {values.data(), rows, cols}; }
};

/// The index that stands at `index` of a line of n extended beyond both ends; n for a zero.
inline std::size_t EdgeIndex(std::ptrdiff_t index, std::size_t n, EdgeMode mode) {
  const auto last = static_cast<std::ptrdiff_t>(n) - 1;
  if (index >= 0 && index <= last) return static_cast<std::size_t>(index);
  if (mode == EdgeMode::kZeros) return n;
  if (mode == EdgeMode::kRepeat) return index < 0 ? 0 : n - 1;
  return static_cast<std::size_t>(
      std::clamp<std::ptrdiff_t>(index < 0 ? -index : 2 * last - index, 0, last));
}

/// The side by side elements whose corner is `before` rows and columns before (r, c).
template <class T>
std::vector<T> WindowAt(const Grid<T>& x, std::size_t side, std::size_t before, EdgeMode mode,
                        std::size_t r, std::size_t c) {
  std::vector<T> window;
  for (std::size_t i = 0; i < side; ++i) {
    for (std::size_t j = 0; j < side; ++j) {
      const std::size_t row = EdgeIndex(static_cast<std::ptrdiff_t>(r + i - before), x.rows, mode);
      const std::size_t col = EdgeIndex(static_cast<std::ptrdiff_t>(c + j - before), x.cols, mode);
      window.push_back(row == x.rows || col == x.cols ? T{} : x.values[row * x.cols + col]);
    }
  }
  return window;
}

}  // namespace vela::kernel

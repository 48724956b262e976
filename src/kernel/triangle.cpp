#include "kernel/triangle.h"

#include <algorithm>
#include <cstring>

namespace vela::kernel {
namespace {

// How many columns of row r lie left of the diagonal, or up to it with_diagonal. Diagonals that
// miss the matrix are alike on either side.
std::size_t ColumnsBefore(std::size_t r, std::int64_t diagonal, std::size_t rows, std::size_t cols,
                          bool with_diagonal) {
  const auto limit = static_cast<std::int64_t>(cols);
  const std::int64_t near = std::clamp(diagonal, -static_cast<std::int64_t>(rows), limit);
  const std::int64_t column = static_cast<std::int64_t>(r) + near + (with_diagonal ? 1 : 0);
  return static_cast<std::size_t>(std::clamp(column, std::int64_t{0}, limit));
}

template <class W>
void KeepColumns(std::span<const W> row, std::size_t begin, std::size_t end, std::span<W> out) {
  if (out.data() != row.data()) {
    std::copy(row.begin() + static_cast<std::ptrdiff_t>(begin),
              row.begin() + static_cast<std::ptrdiff_t>(end),
              out.begin() + static_cast<std::ptrdiff_t>(begin));
  }
  std::memset(out.data(), 0, begin * sizeof(W));
  std::memset(out.data() + end, 0, (row.size() - end) * sizeof(W));
}

// The row and column of the first element of the diagonal.
struct Start {
  std::size_t row, col;
};
Start DiagonalStart(std::int64_t k) {
  const auto distance = static_cast<std::uint64_t>(k);
  return k < 0 ? Start{std::size_t{0} - distance, 0} : Start{0, distance};
}

}  // namespace

template <class W>
void KeepLower(MatrixSpan<const W> x, std::int64_t diagonal, MatrixSpan<W> out) {
  if (x.IsEmpty()) return;
  for (std::size_t r = 0; r < x.rows; ++r) {
    KeepColumns(x.Row(r), 0, ColumnsBefore(r, diagonal, x.rows, x.cols, true), out.Row(r));
  }
}

template <class W>
void KeepUpper(MatrixSpan<const W> x, std::int64_t diagonal, MatrixSpan<W> out) {
  if (x.IsEmpty()) return;
  for (std::size_t r = 0; r < x.rows; ++r) {
    KeepColumns(x.Row(r), ColumnsBefore(r, diagonal, x.rows, x.cols, false), x.cols, out.Row(r));
  }
}

std::size_t DiagonalSize(std::size_t rows, std::size_t cols, std::int64_t k) {
  const Start start = DiagonalStart(k);
  if (start.row >= rows || start.col >= cols) return 0;
  return std::min(rows - start.row, cols - start.col);
}

template <class W>
void CopyDiagonal(MatrixSpan<const W> x, std::int64_t k, std::span<W> out) {
  const Start start = DiagonalStart(k);
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = x(start.row + i, start.col + i);
}

template <class W>
void StoreDiagonal(std::span<const W> values, std::int64_t k, MatrixSpan<W> x) {
  const Start start = DiagonalStart(k);
  for (std::size_t i = 0; i < values.size(); ++i) x(start.row + i, start.col + i) = values[i];
}

#define VELA_KERNEL_INSTANTIATE(W)                                                \
  template void KeepLower<W>(MatrixSpan<const W>, std::int64_t, MatrixSpan<W>);   \
  template void KeepUpper<W>(MatrixSpan<const W>, std::int64_t, MatrixSpan<W>);   \
  template void CopyDiagonal<W>(MatrixSpan<const W>, std::int64_t, std::span<W>); \
  template void StoreDiagonal<W>(std::span<const W>, std::int64_t, MatrixSpan<W>);
VELA_KERNEL_FOR_MATRIX_WORDS(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

#pragma once

#include <cstddef>
#include <cstdint>

#include "kernel/matrix_span.h"
#include "kernel/rotate.h"
#include "kernel/word.h"

namespace vela::kernel {

/// x(r, c) becomes the old x((r + row_shift) mod rows, (c + col_shift) mod cols), for any shifts,
/// negative ones included. In place with a few kilobytes of stack; each shift moves each element
/// about once.
template <class W>
void WrapMatrix(MatrixSpan<W> x, std::int64_t row_shift, std::int64_t col_shift) {
  if (x.IsEmpty()) return;
  const std::int64_t rows = row_shift % static_cast<std::int64_t>(x.rows);
  const std::int64_t cols = col_shift % static_cast<std::int64_t>(x.cols);
  if (rows != 0) Rotate<W>(x.Values(), rows * static_cast<std::int64_t>(x.cols));
  if (cols == 0) return;
  for (std::size_t r = 0; r < x.rows; ++r) Rotate<W>(x.Row(r), cols);
}

}  // namespace vela::kernel

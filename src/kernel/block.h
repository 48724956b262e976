#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel {

// For Word<1> to Word<16>. No allocation.

/// Copies rows x cols elements from (row, col) of `from` to (to_row, to_col) of `to`. The block
/// lies inside both. The matrices may share memory in any way, be it with rows of other lengths:
/// the result is as if the block had been copied aside first. Nothing happens when it is empty.
template <class W>
void CopyBlock(MatrixSpan<const W> from, std::size_t row, std::size_t col, MatrixSpan<W> to,
               std::size_t to_row, std::size_t to_col, std::size_t rows, std::size_t cols);

/// Row (column) k of out becomes row (column) indices[k] of x, which is inside x. out has
/// indices.size() rows (columns), as many columns (rows) as x, and does not overlap x.
template <class W>
void SelectRows(MatrixSpan<const W> x, std::span<const std::uint32_t> indices, MatrixSpan<W> out);
template <class W>
void SelectCols(MatrixSpan<const W> x, std::span<const std::uint32_t> indices, MatrixSpan<W> out);

/// out(r, c) = x((r + row_split) mod rows, (c + col_split) mod cols): the parts on both sides of
/// the splits, which are at most rows and cols, trade places. out has the shape of x and is x or
/// does not overlap it.
template <class W>
void SwapHalves(MatrixSpan<const W> x, std::size_t row_split, std::size_t col_split,
                MatrixSpan<W> out);

}  // namespace vela::kernel

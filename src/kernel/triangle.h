#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel {

// For Word<1> to Word<16> and any 64-bit number of a diagonal: 0 is the main one, positive ones lie
// to its right. No allocation.

/// out is x with zeros where c > r + diagonal (KeepLower) or c < r + diagonal (KeepUpper). It has
/// the shape of x and is x or does not overlap it.
template <class W>
void KeepLower(MatrixSpan<const W> x, std::int64_t diagonal, MatrixSpan<W> out);
template <class W>
void KeepUpper(MatrixSpan<const W> x, std::int64_t diagonal, MatrixSpan<W> out);

/// How many elements diagonal k of a matrix has; 0 when it misses the matrix.
std::size_t DiagonalSize(std::size_t rows, std::size_t cols, std::int64_t k);

/// Copies the first out.size() elements of the diagonal, at most DiagonalSize.
template <class W>
void CopyDiagonal(MatrixSpan<const W> x, std::int64_t k, std::span<W> out);

/// Replaces the first values.size() elements of the diagonal, at most DiagonalSize.
template <class W>
void StoreDiagonal(std::span<const W> values, std::int64_t k, MatrixSpan<W> x);

}  // namespace vela::kernel

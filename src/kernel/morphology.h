#pragma once

#include <concepts>
#include <cstddef>
#include <vector>

#include "kernel/matrix_span.h"

namespace vela::kernel {

/// A flat neighbourhood: the cells of a rows by cols mask that are not 0, around its origin
/// (rows / 2, cols / 2).
struct StructuringElement {
  std::size_t rows, cols;
  std::vector<unsigned char> mask;  ///< rows * cols, row by row
};

/// Dilation replaces x(r, c) by the largest x(r - i, c - j), erosion by the least x(r + i, c + j),
/// where (i, j) are the element's cells counted from its origin: each is the other's dual, and an
/// opening or closing by both is where the element is. Neighbours outside the matrix, missing
/// values and NaNs are left out; where none is left, the result is missing in a matrix of doubles
/// and NaN in one of floats, which cannot be missing.
///
/// The cost of an element of x does not depend on the size of a rectangle; for any other
/// structuring element it grows with the number of its horizontal runs. The element may be larger
/// than the matrix. Scratch: three times the rows that the element covers, and for one that is no
/// rectangle some 256 columns of those for each length among its runs. Throws std::bad_alloc with
/// nothing changed.
template <std::floating_point T>
void Dilate(MatrixSpan<T> x, const StructuringElement& element);
template <std::floating_point T>
void Erode(MatrixSpan<T> x, const StructuringElement& element);

}  // namespace vela::kernel

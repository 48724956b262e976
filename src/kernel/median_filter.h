#pragma once

#include <cstddef>

#include "kernel/edge_mode.h"
#include "kernel/element_types.h"
#include "kernel/matrix_span.h"

namespace vela::kernel {

/// Replaces each element x(r, c) by the median of the size by size elements whose corner is
/// x(r - size / 2, c - size / 2); what lies beyond the edges is as `mode` says. An odd number of
/// elements has a middle one; of an even number n the elements n / 2 and n / 2 + 1 in ascending
/// order, counted from 0, give their mean, stored by ConvertElement. NaN sorts last, 0 and -0 are
/// equal, and missing values count as the numbers they are. Not for the 64-bit integers.
///
/// Returns false, with nothing changed, for size 0, for an unknown mode and for a mirror as wide as
/// the matrix (size / 2 >= x.rows or >= x.cols).
///
/// The cost of an element grows with the side of the window, not its area; for sides 3 and 5 and
/// for elements of 8 bits (up to side 181) it is constant. Windows may be far larger than the
/// matrix: no step is spent on what lies beyond it twice. Scratch: the rows of a window and the
/// like again, and a square of some twice its side; windows more than twice as large as the matrix
/// take some 30 bytes per element of that, and of more rows than columns a copy. Throws
/// std::bad_alloc with nothing changed, also for 2^32 or more elements in those, and
/// std::length_error for sizes of 2^32 or more.
template <Element T>
bool MedianFilter(MatrixSpan<T> x, std::size_t size, EdgeMode mode);

}  // namespace vela::kernel

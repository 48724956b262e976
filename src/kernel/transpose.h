#pragma once

#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel {

// For Word<1> to Word<16>.

/// The elements of x, read as cols x rows, become the transpose. In place: a square moves every
/// element once and needs no memory. With sides that differ, the elements move up to four times,
/// and what is left of x once as many squares as possible have been cut off it is copied aside; a
/// matrix that is narrower than 64 is copied whole. std::bad_alloc leaves x as it was.
template <class W>
void Transpose(MatrixSpan<W> x);

/// out(c, r) = x(r, c): out is cols x rows and does not overlap x. No allocation.
template <class W>
void Transpose(MatrixSpan<const W> x, MatrixSpan<W> out);

}  // namespace vela::kernel

#pragma once

#include <cstddef>

#include "kernel/line_block.h"
#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel {

// For Word<1> to Word<16>; every element is read and written once but for the scratch copies.

/// The elements of x, read as cols x rows, become the transpose. A square is transposed in place;
/// other shapes need a copy of x, made before anything is written: std::bad_alloc leaves x as it
/// was. A single row or column needs nothing.
template <class W>
void Transpose(MatrixSpan<W> x);

/// out(c, r) = x(r, c): out is cols x rows and does not overlap x. No allocation.
template <class W>
void Transpose(MatrixSpan<const W> x, MatrixSpan<W> out);

namespace detail {

/// to(c, r) = from(r, c) for rows that may be numbered from the last one up. No overlap.
template <class W>
void TransposeStrided(ConstBlock<W> from, Block<W> to, std::size_t rows, std::size_t cols);

}  // namespace detail
}  // namespace vela::kernel

#pragma once

#include <span>

#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel {

// In place, for Word<1> to Word<16>; no allocation, each element is moved once.

/// Reverses the order of the elements.
template <class W>
void Reverse(std::span<W> x);

/// Reverses every row.
template <class W>
void FlipHorizontal(MatrixSpan<W> x);

/// Reverses the order of the rows.
template <class W>
void FlipVertical(MatrixSpan<W> x);

}  // namespace vela::kernel

#pragma once

#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel::detail {

/// Transpose of a matrix of two rows and columns or more that is no square.
template <class W>
void TransposeRectangle(MatrixSpan<W> x);

}  // namespace vela::kernel::detail

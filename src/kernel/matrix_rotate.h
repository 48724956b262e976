#pragma once

#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel {

/// Turns x counter-clockwise by 1, 2 or 3 quarters; after one the element at (r, c) is the old one
/// at (c, old cols - 1 - r). Odd turns leave cols x rows elements. In place; odd turns of what is
/// no square cost what Transpose does and a flip. std::bad_alloc leaves x as it was. For Word<1> to
/// Word<16>.
template <class W>
void RotateQuarters(MatrixSpan<W> x, int turns);

}  // namespace vela::kernel

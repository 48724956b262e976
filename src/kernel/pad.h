#pragma once

#include <cstddef>

#include "kernel/edge_mode.h"
#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel {

/// x with n >= 1 rows and columns added on every side: out is (rows + 2n) by (cols + 2n) and does
/// not overlap x. The corners follow from adding the rows first and the columns to the rows so
/// extended. False, with nothing written, when x lacks what the mode needs: more than n rows and
/// columns to mirror, an element to repeat. For Word<1> to Word<16>. One pass, no allocation.
template <class W>
bool Pad(MatrixSpan<const W> x, std::size_t n, EdgeMode mode, MatrixSpan<W> out);

}  // namespace vela::kernel

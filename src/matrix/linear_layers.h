// Linear algebra on layers of matrices.
#pragma once

#include <cstdint>

#include "matrix/matrix_block.h"

namespace vela {

// Integer elements are multiplied as they are, wrapping around; for the others of these they are
// taken as doubles, and results truncate and saturate. The operand is read as the elements' type.
// Each is a status, with x as it was unless 0; std::bad_alloc for want of memory.

// x = x y; 1 where the shapes do not chain, 7 for a product of more than 4 GiB - 1.
int MultiplyLayer(const Layer& x, const Layer& y);
// x = x times the inverse of y; 1 for a y that is not square, does not fit, or is singular.
int DivideLayer(const Layer& x, const Layer& y);
// x = x to the power n, through the inverse for a negative n; 1 for a layer that is not square, or
// singular.
int RaiseLayer(const Layer& x, std::int64_t n);

// Whether elements of the type are inverted in place: floating and complex ones.
bool HasInverse(unsigned type_id);
// Inverts a square block of such elements in place; false, with nothing changed, where there is no
// inverse or a value is missing.
bool InvertBlock(const MatrixBlock& block);

}  // namespace vela

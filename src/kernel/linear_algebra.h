#pragma once

#include <cstdint>

#include "kernel/matrix_span.h"

namespace vela::kernel {

// Products, quotients, inverses and powers of matrices of double, float or std::complex<double>.
//
// The work is done in doubles, on blocks that fit the cache; float and complex matrices are copied
// into doubles for it. A complex value is missing when either part is; where a result is missing,
// both parts are. A matrix is singular when a pivot of its elimination (rows are exchanged for the
// largest) does not exceed the rounding errors it was computed with, so scaling rows or columns
// makes no matrix singular. Everything throws std::bad_alloc before it writes anything.

/// out = a * b, for a.cols == b.rows; with a.cols == 0 all zeros. out overlaps neither. A missing
/// value in a row of a makes that row of out missing, one in a column of b that column; NaN and
/// infinities as the sums of products have them. Of integers (char to unsigned int) the sums wrap.
/// rows * cols * a.cols multiplications; scratch for doubles is a few blocks, otherwise copies of
/// all three.
template <class T>
void Multiply(MatrixSpan<const T> a, MatrixSpan<const T> b, MatrixSpan<T> out);

/// out = a * inverse(b), by solving out * b = a; b is square, a.cols == b.rows, and out has a's
/// shape and overlaps neither. False, with out untouched, when b is singular or holds a missing
/// value, a NaN or an infinity. A missing value in a row of a makes that row of out missing.
/// Scratch: a copy of b and one of out.
template <class T>
bool SolveRight(MatrixSpan<const T> a, MatrixSpan<const T> b, MatrixSpan<T> out);

/// Replaces the square x by its inverse. False, with x untouched, when x is singular or holds a
/// missing value, a NaN or an infinity, or when the inverse has elements beyond the range of T.
/// Scratch: three copies of x.
template <class T>
bool Invert(MatrixSpan<T> x);

/// Replaces the square x by its n-th power, for negative n that of its inverse; n == 0 gives the
/// identity, whatever x holds. False, with x untouched, when n is negative and x has no inverse as
/// for Invert. Missing values, NaN and overflow as in a chain of products. At most 2 log2(n)
/// products; scratch: three copies of x besides theirs.
template <class T>
bool Power(MatrixSpan<T> x, std::int64_t n);

}  // namespace vela::kernel

#pragma once

#include <cstddef>

#include "kernel/complex_parts.h"
#include "kernel/edge_mode.h"
#include "kernel/element_types.h"
#include "kernel/matrix_span.h"

namespace vela::kernel {

/// Replaces each element x(r, c) by the sum of its neighbours, each times its weight:
/// sum of kernel(i, j) * x(r - s / 2 + i, c - s / 2 + j), where s is the side of the kernel, which
/// must be square and not empty and is not flipped. What lies beyond the edges is as `mode` says.
/// With `normalise` the sum is divided by the sum of the kernel, unless that is 0.
///
/// Sums are of doubles. A result beyond T's range, an infinity among them, becomes the end of the
/// range; otherwise it is stored by ConvertElement, so integers truncate toward zero. Missing
/// values count as the numbers they are; NaN and infinities spread as the products have it (0 times
/// infinity is NaN). Not for the 64-bit integers.
///
/// - Integer elements become exactly what adding the products row by row gives, on any processor,
///   however the sum was found here.
/// - Floating elements are within a few rounding errors of that, which may differ between
///   processors in the last places: products are added without rounding them where the processor
///   can, and a kernel that is a column times a row (to within rounding) is applied in two passes.
///   Where that takes part in NaN, infinities or an overflow, the plain sum decides.
///
/// Returns false, with nothing changed, for an unknown mode and for a mirror as wide as the matrix
/// (s / 2 >= x.rows or >= x.cols). Cost: s * s steps per element, 2 * s for a column times a row.
/// Scratch: some s rows of x, extended, as doubles; when it runs out (std::bad_alloc) nothing has
/// changed.
template <Element T>
bool Correlate(MatrixSpan<T> x, MatrixSpan<const double> kernel, EdgeMode mode, bool normalise);

namespace detail {
/// As Correlate for pairs of doubles, with each part on its own and infinities as they come.
bool CorrelatePairs(MatrixSpan<double> x, MatrixSpan<const double> kernel, EdgeMode mode,
                    bool normalise);
}  // namespace detail

/// As Correlate, real and imaginary parts each on their own; results may be infinite.
template <Complex Z>
bool CorrelateComplex(MatrixSpan<Z> x, MatrixSpan<const double> kernel, EdgeMode mode,
                      bool normalise) {
  static_assert(sizeof(Z) == 2 * sizeof(double));
  return detail::CorrelatePairs({reinterpret_cast<double*>(x.data), x.rows, 2 * x.cols}, kernel,
                                mode, normalise);
}

}  // namespace vela::kernel

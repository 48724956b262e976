#pragma once

#include "kernel/matrix_span.h"

namespace vela::kernel {

/// Products and solutions of doubles as compiled for one instruction set. No argument overlaps
/// another.
struct DoubleAlgebra {
  /// out = a * b.
  void (*multiply)(MatrixSpan<const double> a, MatrixSpan<const double> b, MatrixSpan<double> out);
  /// out = a * inverse(b); false when b is not finite or singular, as linear_algebra.h defines it.
  /// Throws std::bad_alloc before out is written.
  bool (*solve_right)(MatrixSpan<const double> a, MatrixSpan<const double> b,
                      MatrixSpan<double> out);
  /// Replaces x by its inverse; false, with x untouched, for such an x or inverse. Throws as above.
  bool (*invert)(MatrixSpan<double> x);
};

extern const DoubleAlgebra kDoubleAlgebraSse4;
extern const DoubleAlgebra kDoubleAlgebraAvx2;
extern const DoubleAlgebra kDoubleAlgebraAvx512;

}  // namespace vela::kernel

#pragma once

#include <cstddef>
#include <vector>

#include "kernel/matrix_span.h"

namespace vela::kernel {

/// How a kernel is applied.
struct CorrelationPlan {
  /// The kernel must outlive the plan. Elements are at most `largest` in magnitude; where `whole`
  /// they are whole numbers. Throws std::bad_alloc.
  CorrelationPlan(MatrixSpan<const double> weights, bool normalise, bool whole, double largest);

  const double* kernel;
  std::size_t side;
  double divisor;  ///< 1 for none

  /// Where the kernel is a column times a row, to within rounding: these. Else empty.
  std::vector<double> column, row;

  /// Sums of whole numbers have no rounding error, in any order.
  bool exact;
  /// Otherwise, how far two ways of adding up can be apart, after the division.
  double uncertainty;
};

}  // namespace vela::kernel

#pragma once

#include <cstddef>
#include <vector>

#include "kernel/matrix_span.h"

namespace vela::kernel {

/// How a kernel is applied.
struct CorrelationPlan {
  static constexpr std::size_t kSlack = 8;

  /// Elements are at most `largest` in magnitude; where `whole`
  /// they are whole numbers. Throws std::bad_alloc.
  CorrelationPlan(MatrixSpan<const double> weights, bool normalise, bool whole, double largest);

  std::vector<double> kernel;  ///< the weights row by row, and kSlack that may be read behind them
  std::size_t side;
  double divisor;  ///< 1 for none

  /// Where the kernel is a column times a row, to within rounding, and large enough that two passes
  /// cost less than one: these. Else empty.
  std::vector<double> column, row;

  /// Sums of whole numbers have no rounding error, in any order.
  bool exact;
  /// Otherwise, how far two ways of adding up can be apart, after the division.
  double uncertainty;

  /// The same for sums of floats, of weights rounded to floats, after a division of floats:
  /// infinite where the weights are beyond what floats are good for.
  bool exact_in_floats;
  double uncertainty_in_floats;

 private:
  void Factor(MatrixSpan<const double> weights, double unit, double largest);
};

}  // namespace vela::kernel

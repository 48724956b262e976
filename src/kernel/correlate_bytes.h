#pragma once

#include "kernel/correlation_plan.h"
#include "kernel/edge_mode.h"
#include "kernel/matrix_span.h"
#include "kernel/padded_bands.h"

namespace vela::kernel {

/// Whether sums of floats settle nearly every result, for elements of a byte.
inline bool IsForFloats(const CorrelationPlan& plan) {
  return plan.exact_in_floats || plan.uncertainty_in_floats < 1.0 / 64;
}

/// Correlate for elements of a byte by sums of floats, of which a vector holds twice as many as of
/// doubles; where their rounding leaves a result in doubt, doubles decide. x is not empty, reach
/// fits it, and IsForFloats(plan). Throws std::bad_alloc before anything is changed.
template <class T>
requires(sizeof(T) == 1) void CorrelateBytes(MatrixSpan<T> x, const WindowReach& reach,
                                             const CorrelationPlan& plan);

}  // namespace vela::kernel

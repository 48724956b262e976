#pragma once

#include <cstddef>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// The sum of the elements that are not missing, 0 when there are none, added as doubles. What
/// rounding takes from each addition is added up too, so that the error is at most a unit in the
/// last place of the result and what n^2 * 2^-106 times the sum of the magnitudes comes to; sums of
/// integers of up to 32 bits are exact but for one rounding. A sum on the way may exceed the range
/// of doubles: the result is finite wherever adding left to right is. A NaN makes the sum NaN. One
/// pass (more when the sum or a part of it is not finite), no allocation.
template <Element T>
double Sum(std::span<const T> x);

struct PresentSum {
  double sum;
  std::size_t count;  ///< elements that are not missing
};

/// The sum as above and how many elements it is of, in the same pass.
template <Element T>
PresentSum SumPresent(std::span<const T> x);

}  // namespace vela::kernel

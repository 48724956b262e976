#pragma once

#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// The sum of the elements that are not missing, 0 when there are none. Elements are added as
/// doubles, pairwise over blocks, so the rounding error grows with the logarithm of the length
/// rather than with the length. A NaN makes the sum NaN. One pass, no allocation.
template <Element T>
double Sum(std::span<const T> x);

}  // namespace vela::kernel

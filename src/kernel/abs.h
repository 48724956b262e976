#pragma once

#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// Replaces every element below 0 by its negative. Missing values, NaN and -0 stay as they are. The
/// lowest value of a signed integer type becomes the highest, so that no result is negative.
template <Element T>
void Abs(std::span<T> x);

}  // namespace vela::kernel

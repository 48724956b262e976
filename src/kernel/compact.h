#pragma once

#include <cstddef>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

// Only a double can be missing: for every other type these count 0 and keep everything. NaN is a
// value. One pass at most.

/// The number of missing values before the first other value; x.size() when all are missing.
template <Element T>
std::size_t CountLeadingMissing(std::span<const T> x);

/// The number of missing values behind the last other value; x.size() when all are missing.
template <Element T>
std::size_t CountTrailingMissing(std::span<const T> x);

/// Moves the values that are not missing to the front of x, in their order, and returns how many
/// they are. What x holds behind them is unspecified.
template <Element T>
std::size_t RemoveMissing(std::span<T> x);

}  // namespace vela::kernel

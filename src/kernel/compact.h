#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "kernel/missing.h"

namespace vela::kernel {

// For elements of any type. NaN is a value, and types that cannot hold the missing value count 0
// and keep everything. One pass at most.

/// The number of missing values before the first other value; x.size() when all are missing.
template <class T>
std::size_t CountLeadingMissing(std::span<const T> x) {
  return static_cast<std::size_t>(std::find_if_not(x.begin(), x.end(), IsMissing<T>) - x.begin());
}

/// The number of missing values behind the last other value; x.size() when all are missing.
template <class T>
std::size_t CountTrailingMissing(std::span<const T> x) {
  return static_cast<std::size_t>(std::find_if_not(x.rbegin(), x.rend(), IsMissing<T>) -
                                  x.rbegin());
}

/// Moves the values that are not missing to the front of x, in their order, and returns how many
/// they are. What x holds behind them is unspecified.
template <class T>
std::size_t RemoveMissing(std::span<T> x) {
  // Storing every value and stepping over it only when it is kept costs no branch.
  std::size_t kept = 0;
  for (const T& value : x) {
    const bool is_missing = IsMissing(value);
    x[kept] = value;
    kept += is_missing ? 0 : 1;
  }
  return kept;
}

}  // namespace vela::kernel

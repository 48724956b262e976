#pragma once

#include <cstddef>
#include <span>

#include "kernel/element_types.h"
#include "kernel/missing.h"

namespace vela::kernel {

struct MinMaxResult {
  double min = kMissing;
  double max = kMissing;
  std::ptrdiff_t min_index = -1;
  std::ptrdiff_t max_index = -1;
  std::size_t count = 0;  ///< elements that are not missing
};

/// The extremes of the elements that are not missing and the first position of each; with no such
/// element the extremes are missing and the positions -1. A NaN that comes first of them is both
/// extremes, whatever follows; a NaN that comes later is never one. Elements are compared in their
/// own type: 64-bit integers exactly, though min and max are rounded to double. One pass, no
/// allocation.
template <Element T>
MinMaxResult MinMax(std::span<const T> x);

}  // namespace vela::kernel

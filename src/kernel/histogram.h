#pragma once

#include <cstddef>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// The number of counts that FrequencyCount fills for so many edges.
constexpr std::size_t FrequencyBins(std::size_t edges, bool underflow, bool overflow) {
  return edges == 0 ? 0 : edges - 1 + (underflow ? 1 : 0) + (overflow ? 1 : 0);
}

/// Counts the elements, read as doubles, in the half-open bins [edges[k], edges[k + 1]), with a bin
/// in front for those below the first edge if underflow, and one behind for those at or above the
/// last edge if overflow; elements outside every bin are dropped, and missing ones always are. An
/// element within 4 units in the last place of an edge counts as equal to it; an infinite edge is
/// equal to itself only. No comparison places a NaN, and the search for its bin ends in the last
/// one between two edges; with fewer than two edges it is dropped.
///
/// edges must ascend (equal ones make empty bins); otherwise each element lands in some bin, but
/// which is not specified. counts.size() must be FrequencyBins(...), else std::invalid_argument;
/// counts are set, not added to. Without edges there is no bin.
///
/// A few nanoseconds per element for edges that are anything like evenly spaced; at worst a binary
/// search each. Scratch in proportion to the edges.
template <Element T>
void FrequencyCount(std::span<const T> x, std::span<const double> edges, bool underflow,
                    bool overflow, std::span<int> counts);

}  // namespace vela::kernel

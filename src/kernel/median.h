#pragma once

#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// The median as GetMedian has it: of the elements in order, missing ones at the place of the
/// number they are, the middle one, or half the sum of the middle two. It is 0 instead where one of
/// those, or their sum, is missing, and missing without any elements. NaN comes after every number,
/// so that the median is NaN once half the elements are. The sum is one of doubles and may
/// overflow.
///
/// Linear time: elements far from the middle, as a sample tells, are only counted, the others
/// collected. Scratch of an eighth of x; a copy of x when the sample misled. Throws std::bad_alloc.
template <Element T>
double Median(std::span<const T> x);

}  // namespace vela::kernel

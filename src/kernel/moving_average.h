#pragma once

#include <cstddef>
#include <span>

namespace vela::kernel {

/// out[i] becomes the mean of the elements of x[i - r .. i + r] that are not missing, where r is
/// `half` cut so that the window stays inside x on both sides; a window of missing elements only
/// gives the missing value. out.size() must be x.size(), and the two must not overlap.
///
/// Each window is summed from its own elements, never by taking old ones off a running sum: a NaN
/// or an infinity shows in exactly the windows that hold it, and rounding errors do not build up
/// along x. Time per element does not depend on the window; scratch is a few windows, and none for
/// windows longer than a quarter of x.
void MovingAverage(std::span<const double> x, std::size_t half, std::span<double> out);

}  // namespace vela::kernel

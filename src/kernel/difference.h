#pragma once

#include <cstddef>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// result[i] = x[i + 1] - x[i], each difference taken of doubles and stored by ConvertElement.
/// Missing values count as the numbers they are and NaN spreads. Needs x.size() >= 1 and
/// result.size() == x.size() - 1; result may start where x starts, otherwise they must not overlap.
template <Element T>
void Difference(std::span<const T> x, std::span<T> result);

/// result[i] = x[i + lag] - x[i] likewise, but missing where one of them is. lag is at least 1 and
/// at most x.size(); result.size() == x.size() - lag.
template <Element T>
void LaggedDifference(std::span<const T> x, std::size_t lag, std::span<T> result);

}  // namespace vela::kernel

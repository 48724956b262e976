#pragma once

#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// result[i] = x[i + 1] - x[i], each difference taken of doubles and stored by ConvertElement.
/// Missing values count as the numbers they are and NaN spreads. Needs x.size() >= 1 and
/// result.size() == x.size() - 1; result may start where x starts, otherwise they must not overlap.
template <Element T>
void Difference(std::span<const T> x, std::span<T> result);

}  // namespace vela::kernel

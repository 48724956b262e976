#pragma once

#include <cstddef>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

// Replacing elements by a rule, in place: one pass, no allocation. Elements are compared with
// doubles as exactly as the numbers that both are.

/// Replaces the elements above, or below, the threshold. Missing values are the number they are;
/// NaN is neither above nor below anything, and nothing is above or below NaN.
template <Element T>
void ReplaceGreater(std::span<T> x, double threshold, T value);
template <Element T>
void ReplaceLess(std::span<T> x, double threshold, T value);

/// Replaces the elements with low <= x <= high, or with `outside` all others, and returns how many.
/// Missing values and NaN are never replaced. Of bounds that are NaN or in the wrong order, nothing
/// is inside.
template <Element T>
std::size_t ReplaceInRange(std::span<T> x, double low, double high, T value, bool outside);

/// Replaces every NaN.
template <Element T>
void ReplaceNan(std::span<T> x, T value);

}  // namespace vela::kernel

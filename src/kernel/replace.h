#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>

#include "kernel/complex_parts.h"
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

/// The same for elements of which a part is NaN.
template <Complex Z>
void ReplaceNan(std::span<Z> x, const Z& value) {
  std::ranges::replace_if(
      x, [](const Z& z) { return std::isnan(z.m_re) || std::isnan(z.m_im); }, value);
}

}  // namespace vela::kernel

#pragma once

#include <cmath>
#include <cstdint>
#include <span>

#include "kernel/complex_parts.h"
#include "kernel/sort.h"

namespace vela::kernel {

/// Stable sort by the elements' own order; an element with a NaN part has no place in it and comes
/// last in either order. indices, when not empty, follow the elements. As SortBy otherwise.
template <Complex Z>
void SortComplex(std::span<Z> values, std::span<std::uint32_t> indices, bool ascending) {
  const auto is_nan = [](const Z& z) { return std::isnan(z.m_re) || std::isnan(z.m_im); };
  SortBy(values, indices, [&](const Z& a, const Z& b) {
    if (is_nan(a) || is_nan(b)) return !is_nan(a) && is_nan(b);
    return (ascending ? a < b : b < a) != 0;
  });
}

}  // namespace vela::kernel

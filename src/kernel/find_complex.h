#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kernel/complex_parts.h"
#include "kernel/find.h"

namespace vela::kernel {

namespace detail {

template <class Z, class Matches>
std::size_t FindWhere(std::span<const Z> z, FindScope scope, std::span<std::uint32_t> found,
                      Matches matches) {
  std::size_t count = 0;
  const std::size_t end = std::min(scope.end, z.size());
  for (std::size_t i = scope.start; i < end && !(scope.first_only && count > 0); ++i) {
    if (!matches(z[i])) continue;
    if (count < found.size()) found[count] = static_cast<std::uint32_t>(i);
    ++count;
  }
  return count;
}

}  // namespace detail

/// As FindEqual and FindInRange of real elements, with the modulus of the difference as distance
/// and the elements' own order.
template <Complex Z>
std::size_t FindEqual(std::span<const Z> z, const Z& value, double tolerance, FindScope scope,
                      std::span<std::uint32_t> found) {
  const bool wants_missing = IsMissing(value);
  return detail::FindWhere(z, scope, found, [&](const Z& element) {
    if (wants_missing || IsMissing(element)) return wants_missing && IsMissing(element);
    return element == value || (tolerance != 0 && (element - value).GetAmplitude() <= tolerance);
  });
}

template <Complex Z>
std::size_t FindInRange(std::span<const Z> z, const Z& low, const Z& high, FindScope scope,
                        std::span<std::uint32_t> found) {
  return detail::FindWhere(z, scope, found, [&](const Z& element) {
    return !IsMissing(element) && element >= low && element <= high;
  });
}

}  // namespace vela::kernel

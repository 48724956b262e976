// The one rule by which a number becomes an integer.
#pragma once

#include <concepts>
#include <limits>
#include <utility>

namespace vela::host {

// Truncates toward zero and saturates at the range of T; NaN gives 0.
template <std::integral T>
constexpr T Saturate(double value) {
  using Limits = std::numeric_limits<T>;
  // Exact for every width, unlike the largest value itself.
  constexpr double kPastTheEnd = static_cast<double>(Limits::max() / 2 + 1) * 2;
  if (value != value) return 0;
  if (value >= kPastTheEnd) return Limits::max();
  if (value <= static_cast<double>(Limits::min())) return Limits::min();
  return static_cast<T>(value);
}

// Saturates at the range of T.
template <std::integral T, std::integral From>
constexpr T Saturate(From value) {
  if (std::in_range<T>(+value)) return static_cast<T>(value);
  return std::cmp_less(+value, 0) ? std::numeric_limits<T>::min() : std::numeric_limits<T>::max();
}

}  // namespace vela::host

#pragma once

#include <cmath>
#include <concepts>
#include <limits>

#include "kernel/convert.h"
#include "kernel/element_types.h"

namespace vela::kernel {

/// The elements from low to high, both included. NaN is in no range.
template <Element T>
struct ElementRange {
  using Limits = std::numeric_limits<T>;
  static constexpr T kLeast = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
  static constexpr T kGreatest = Limits::has_infinity ? Limits::infinity() : Limits::max();

  T low = kGreatest;  ///< an empty range unless set otherwise
  T high = kLeast;

  bool IsEmpty() const { return !(low <= high); }
};

namespace detail {

template <Element T>
T NextAbove(T value) {
  if constexpr (std::floating_point<T>) {
    return std::nextafter(value, ElementRange<T>::kGreatest);
  } else {
    return static_cast<T>(value + 1);
  }
}

template <Element T>
T NextBelow(T value) {
  if constexpr (std::floating_point<T>) {
    return std::nextafter(value, ElementRange<T>::kLeast);
  } else {
    return static_cast<T>(value - 1);
  }
}

/// One past the greatest element of an integer type.
template <Element T>
inline constexpr double kEnd = 2.0 * (std::numeric_limits<T>::max() / 2 + 1);

}  // namespace detail

// The elements that compare with a double as told, as exactly as numbers do: a bound may lie
// between two elements or beyond them all. None do with NaN.

template <Element T>
ElementRange<T> ElementsUpTo(double bound) {
  using Range = ElementRange<T>;
  if (std::isnan(bound)) return {};
  if constexpr (std::integral<T>) {
    const double whole = std::floor(bound);
    if (whole < static_cast<double>(Range::kLeast)) return {};
    return {Range::kLeast, ConvertElement<T>(whole)};
  } else {
    const T near = static_cast<T>(bound);
    return {Range::kLeast, near > bound ? detail::NextBelow(near) : near};
  }
}

template <Element T>
ElementRange<T> ElementsFrom(double bound) {
  using Range = ElementRange<T>;
  if (std::isnan(bound)) return {};
  if constexpr (std::integral<T>) {
    const double whole = std::ceil(bound);
    if (whole >= detail::kEnd<T>) return {};
    return {ConvertElement<T>(whole), Range::kGreatest};
  } else {
    const T near = static_cast<T>(bound);
    return {near < bound ? detail::NextAbove(near) : near, Range::kGreatest};
  }
}

template <Element T>
ElementRange<T> ElementsAbove(double bound) {
  using Range = ElementRange<T>;
  if (std::isnan(bound)) return {};
  const Range rest = ElementsUpTo<T>(bound);
  if (rest.IsEmpty()) return {Range::kLeast, Range::kGreatest};
  if (rest.high == Range::kGreatest) return {};
  return {detail::NextAbove(rest.high), Range::kGreatest};
}

template <Element T>
ElementRange<T> ElementsBelow(double bound) {
  using Range = ElementRange<T>;
  if (std::isnan(bound)) return {};
  const Range rest = ElementsFrom<T>(bound);
  if (rest.IsEmpty()) return {Range::kLeast, Range::kGreatest};
  if (rest.low == Range::kLeast) return {};
  return {Range::kLeast, detail::NextBelow(rest.low)};
}

template <Element T>
ElementRange<T> ElementsBetween(double low, double high) {
  const ElementRange<T> from = ElementsFrom<T>(low), up_to = ElementsUpTo<T>(high);
  if (from.IsEmpty() || up_to.IsEmpty() || from.low > up_to.high) return {};
  return {from.low, up_to.high};
}

}  // namespace vela::kernel

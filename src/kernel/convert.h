#pragma once

#include <cstddef>
#include <limits>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// The value that an element of type To holds after `value` was stored in it.
/// - Floating to integer: truncated toward zero, saturated at To's range; NaN and the missing value
///   give 0.
/// - Integer to integer: saturated at To's range.
/// - Double to float: rounded to nearest. The missing value is far below the smallest float and so
///   becomes -0: a float cannot hold it, and widening the float again does not bring it back.
/// - Anything to double, and integer to float: exact where possible, else the nearest.
template <Element To, Element From>
constexpr To ConvertElement(From value) {
  if constexpr (std::same_as<To, From>) {
    return value;
  } else if constexpr (std::floating_point<To>) {
    return static_cast<To>(value);
  } else if constexpr (std::floating_point<From>) {
    // In either form the cast is given only values it is defined for, and without a branch, so that
    // loops become vector code. A bound of -2^k or 0 is exact in either floating type.
    constexpr From kLow = static_cast<From>(std::numeric_limits<To>::min());
    if constexpr (std::numeric_limits<To>::digits <= std::numeric_limits<From>::digits) {
      constexpr From kHigh = static_cast<From>(std::numeric_limits<To>::max());
      const From from_low = value > kLow ? value : kLow;
      const From inside = from_low < kHigh ? from_low : kHigh;
      return static_cast<To>(value == value ? inside : From{0});
    } else {
      constexpr From kEnd = static_cast<From>(std::numeric_limits<To>::max() / 2 + 1) * 2;
      const To inside = static_cast<To>(value > kLow && value < kEnd ? value : From{0});
      const To capped = value >= kEnd ? std::numeric_limits<To>::max() : inside;
      return value <= kLow ? std::numeric_limits<To>::min() : capped;
    }
  } else {
    constexpr To kLow = std::numeric_limits<To>::min();
    constexpr To kHigh = std::numeric_limits<To>::max();
    constexpr bool kWider = std::numeric_limits<From>::digits > std::numeric_limits<To>::digits;
    if constexpr (std::signed_integral<From> && (kWider || std::unsigned_integral<To>)) {
      if (value < static_cast<From>(kLow)) return kLow;
    }
    if constexpr (kWider) {
      if (value > static_cast<From>(kHigh)) return kHigh;
    }
    return static_cast<To>(value);
  }
}

namespace detail {

/// Copies bytes between runs that may overlap.
void MoveBytes(const void* source, void* target, std::size_t size);

/// Stores the elements by ConvertElement into a target of the type at that position in SimpleTypes.
template <Element From>
void ConvertTo(std::size_t type, const From* source, void* target, std::size_t count);

}  // namespace detail

/// Stores source[i] into target[i] by ConvertElement, for every i; target.size() must be
/// source.size(). Spans of different types must not overlap; of one type they may. One pass, no
/// allocation.
template <Element To, Element From>
void Convert(std::span<const From> source, std::span<To> target) {
  if constexpr (std::same_as<To, From>) {
    detail::MoveBytes(source.data(), target.data(), source.size_bytes());
  } else {
    detail::ConvertTo(kTypePosition<To>, source.data(), target.data(), source.size());
  }
}

/// As Convert from one floating type to the other, but a NaN is stored as the missing value is.
void ConvertWithoutNan(std::span<const float> source, std::span<double> target);
void ConvertWithoutNan(std::span<const double> source, std::span<float> target);

}  // namespace vela::kernel

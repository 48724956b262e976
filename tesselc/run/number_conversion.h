// Conversion between the number types as the language defines it.
#pragma once

#include <cmath>
#include <concepts>
#include <limits>

#include "frame/interface/complex.h"
#include "frame/interface/point.h"

namespace tesselc {

// Truncates toward zero and saturates; NaN gives 0, and so does the missing value.
template <std::integral To, std::floating_point From>
To TruncateSaturating(From value) {
  // 2 to the power of the number of value bits is exact in every floating type; max() may not be.
  constexpr From kEnd = static_cast<From>(std::numeric_limits<To>::max() / 2 + 1) * 2;
  if (std::isnan(value)) return 0;
  if (value >= kEnd) return std::numeric_limits<To>::max();
  if (value <= static_cast<From>(std::numeric_limits<To>::min())) {
    return std::numeric_limits<To>::min();
  }
  return static_cast<To>(value);
}

template <class To, class From>
To ConvertScalar(const From& value) {
  if constexpr (std::is_same_v<To, From>) {
    return value;
  } else if constexpr (std::integral<To> && std::floating_point<From>) {
    return TruncateSaturating<To>(value);
  } else if constexpr (std::is_arithmetic_v<To> && std::is_arithmetic_v<From>) {
    return static_cast<To>(value);
  } else if constexpr (std::is_same_v<To, OneTCcomplex> && std::is_arithmetic_v<From>) {
    return OneTCcomplex(static_cast<double>(value));
  } else if constexpr (std::is_arithmetic_v<To> && std::is_same_v<From, OneTCcomplex>) {
    return ConvertScalar<To>(value.m_re);
  } else {  // between points; a coordinate that the source lacks is 0
    To result;
    constexpr int kShared =
        To::kDimensions < From::kDimensions ? To::kDimensions : From::kDimensions;
    for (std::size_t i = 0; i < kShared; ++i) {
      result[i] = ConvertScalar<typename To::Coordinate>(value[i]);
    }
    return result;
  }
}

}  // namespace tesselc

// Conversion of one element value to another element type, and its text.
#pragma once

#include <algorithm>
#include <charconv>
#include <concepts>
#include <string_view>
#include <system_error>

#include "frame/element_types.h"
#include "frame/interface/string_utf8.h"
#include "frame/interface/type_base.h"
#include "kernel/convert.h"

namespace vela {

// Simple types convert as kernel::ConvertElement does (truncation, saturation, missing to 0). A
// simple value becomes a complex with that real part, or a point with that x and zeros; a complex
// is its real part as a number, and re, im as a point; a point is its x as a number.
template <class To, class From>
To ConvertValue(const From& from) {
  if constexpr (std::same_as<To, From>) {
    return from;
  } else if constexpr (SimpleElement<To> && SimpleElement<From>) {
    return kernel::ConvertElement<To>(from);
  } else if constexpr (SimpleElement<To> && ComplexElement<From>) {
    return kernel::ConvertElement<To>(from.m_re);
  } else if constexpr (SimpleElement<To>) {
    return kernel::ConvertElement<To>(from[0]);
  } else if constexpr (ComplexElement<To> && SimpleElement<From>) {
    return OneTCcomplex(kernel::ConvertElement<double>(from));
  } else if constexpr (ComplexElement<To>) {
    return {static_cast<double>(from[0]), static_cast<double>(from[1])};
  } else {
    using Coordinate = typename To::Coordinate;
    To to;
    if constexpr (SimpleElement<From>) {
      to[0] = kernel::ConvertElement<Coordinate>(from);
    } else if constexpr (ComplexElement<From>) {
      to[0] = kernel::ConvertElement<Coordinate>(from.m_re);
      to[1] = kernel::ConvertElement<Coordinate>(from.m_im);
    } else {
      constexpr int n = To::kDimensions < From::kDimensions ? To::kDimensions : From::kDimensions;
      for (int i = 0; i < n; ++i) to[i] = kernel::ConvertElement<Coordinate>(from[i]);
    }
    return to;
  }
}

// The number that a text stands for, as ParleyStr2double reads it; 64-bit integers exactly.
template <SimpleElement T>
T ValueOfText(const char* text) {
  if constexpr (std::integral<T> && sizeof(T) == 8) {
    T value = 0;
    std::string_view digits = text == nullptr ? "" : text;
    constexpr const char* kSpace = " \t\n\r\v\f";
    digits.remove_prefix(std::min(digits.find_first_not_of(kSpace), digits.size()));
    digits = digits.substr(0, digits.find_last_not_of(kSpace) + 1);
    const auto [rest, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (error == std::errc() && rest == digits.data() + digits.size()) return value;
  }
  return ConvertValue<T>(VELAObj::ParleyStr2double(text));
}

// Text of one value by the number-to-text rule; 64-bit integers exactly; complex by its own text
// form; points as "(x, y)".
CStringUTF8 ValueText(SimpleElement auto value);
CStringUTF8 ValueText(const OneTCcomplex& value);
CStringUTF8 ValueText(const PointInt& value);
CStringUTF8 ValueText(const PointDouble& value);
CStringUTF8 ValueText(const Point3D& value);

}  // namespace vela

#pragma once

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tesselc/source.h"

namespace tesselc {

// One argument of printf after the default promotions.
struct FormatArgument {
  enum class Kind { kInt, kInt64, kDouble, kText };
  Kind kind = Kind::kInt;
  std::int64_t integer = 0;  // of kInt and kInt64; unsigned ones by their bits
  double real = 0;
  std::string text;

  template <class T>
  static FormatArgument Number(T value) {
    FormatArgument argument;
    if constexpr (std::floating_point<T>) {
      argument.kind = Kind::kDouble;
      argument.real = value;
    } else {
      argument.kind = sizeof(T) > sizeof(int) ? Kind::kInt64 : Kind::kInt;
      argument.integer = static_cast<std::int64_t>(value);
    }
    return argument;
  }
  static FormatArgument Text(std::string_view value) {
    FormatArgument argument;
    argument.kind = Kind::kText;
    argument.text = value;
    return argument;
  }
};

// C's printf, with every conversion checked against its argument: a conversion of another kind, one
// without an argument, a width beyond a million or an incomplete conversion throws a ScriptError.
// An int may be printed by a 64-bit conversion, not the other way round. Surplus arguments are
// ignored, as in C.
std::string FormatPrintf(std::string_view format, const std::vector<FormatArgument>& arguments,
                         const SourceRange& where);

}  // namespace tesselc

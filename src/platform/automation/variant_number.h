// Numbers as automation values see them, between any two of its numeric types. Elsewhere than on
// Windows, VariantChangeType stands on this, and so would the arithmetic on values.
#pragma once

#if !defined(_WIN32)

#include <string>
#include <string_view>
#include <variant>

#include "platform/automation.h"

namespace vela::platform {

__extension__ using Magnitude = unsigned __int128;

// (-1)^negative * magnitude / 10^scale with magnitude below 2^96 and scale 0 .. 28: what every
// integer type, VT_CY and VT_DECIMAL hold.
struct ExactNumber {
  bool negative = false;
  Magnitude magnitude = 0;
  int scale = 0;
};

using Number = std::variant<ExactNumber, double>;

// The value of a numeric VARIANT, VT_EMPTY as 0 and VT_BOOL as 0 or -1. DISP_E_TYPEMISMATCH for
// everything else, text included.
HRESULT ReadNumber(const VARIANT& value, Number& number);
// The number that text spells, as a double when real is set, else exactly: white space around it, a
// sign on either side, digits (with "," between groups), ".", an exponent; or &H and &O with
// hexadecimal and octal digits.
HRESULT ParseNumber(std::string_view text, bool real, Number& number);
// Makes value a number of a type, rounding half to even. value owns nothing before or after.
HRESULT WriteNumber(const Number& number, VARTYPE type, VARIANT& value);
// The shortest plain decimal form of an exact number.
std::string FormatExact(const ExactNumber& number);

}  // namespace vela::platform

#endif

// Numbers as automation values see them, between any two of its numeric types.
#pragma once

#if !defined(_WIN32)

#include <variant>

#include "platform/automation/exact_number.h"

namespace vela::platform {

// A float knows its number to 7 digits, a double to 15.
using Number = std::variant<ExactNumber, float, double>;

inline constexpr int kFloatDigits = 7;
inline constexpr int kDoubleDigits = 15;

// The value of a numeric VARIANT, VT_EMPTY as 0 and VT_BOOL as the number it holds.
// DISP_E_TYPEMISMATCH for everything else, text included; E_INVALIDARG for an ill-formed
// VT_DECIMAL.
HRESULT ReadNumber(const VARIANT& value, Number& number);
// Makes value a number of a type, rounding half to even; DISP_E_OVERFLOW outside the type's range,
// DISP_E_TYPEMISMATCH where the type is no number. value owns nothing before or after.
HRESULT WriteNumber(const Number& number, VARTYPE type, VARIANT& value);

double ToReal(const Number& number);

}  // namespace vela::platform

#endif

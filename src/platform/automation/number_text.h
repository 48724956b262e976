// Numbers in text, and text of numbers.
#pragma once

#if !defined(_WIN32)

#include <string>
#include <string_view>

#include "platform/automation/number.h"

namespace vela::platform {

// The number that text spells, for a value of a type (a double for real types, else exact):
// DISP_E_TYPEMISMATCH for what is no number, DISP_E_OVERFLOW for one beyond any of the kind.
HRESULT ParseNumber(std::string_view text, VARTYPE type, Number& number);
// The shortest form that keeps the digits (7 or 15) which a real type is sure to hold.
std::string FormatReal(double value, int digits);

}  // namespace vela::platform

#endif

// Numbers in text, and text of numbers, in the forms of the invariant locale.
#pragma once

#if !defined(_WIN32)

#include <string>
#include <string_view>

#include "platform/automation/number.h"

namespace vela::platform {

// The number that text spells, for a value of a type (a double for real types, else exact):
// DISP_E_TYPEMISMATCH for what is no number, DISP_E_OVERFLOW for one beyond any of the kind.
//
// Digits with a point, an exponent and "," between them anywhere; around them, each at most once,
// white space, a sign, the currency sign and a pair of brackets that makes the number negative.
// Or &H and &O with hexadecimal and octal digits: the bits of an integer of the type's width, of 32
// or else 64 bits for types that are none.
HRESULT ParseNumber(std::u16string_view text, VARTYPE type, Number& number);
// The shortest plain form of an exact number; that of a real one with the digits it is sure to
// hold, with an exponent where that is shorter.
std::string FormatNumber(const Number& number);

}  // namespace vela::platform

#endif

// The values that the grid is made of.
#pragma once

#include <vector>

#include "platform/automation.h"

namespace vela::grid {

// Fresh values; bits fill the content, and a real number is narrowed to the type.
VARIANT NewInteger(VARTYPE type, long long bits);
VARIANT NewReal(VARTYPE type, double number);
VARIANT NewDecimal(bool negative, ULONG high, ULONGLONG low, BYTE scale);
VARIANT NewText(const char16_t* text);

// Values of every type, edges among them, of which every pair is tried. Nobody changes them.
std::vector<VARIANT>& Samples();
// More of those that conversions read.
const std::vector<const char16_t*>& Texts();
const std::vector<double>& Numbers();

}  // namespace vela::grid

// Values, types and result codes as text, the same on every platform.
#pragma once

#include <string>

#include "platform/automation.h"

namespace vela::grid {

std::string NameOf(VARTYPE type);
std::string NameOf(HRESULT code);
// TYPE:VALUE, TYPE alone for what has no printable value; & in front of what is referred to.
std::string Describe(const VARIANT& value);
std::string HexText(unsigned value);

// One line of the grid.
void Print(const std::string& line);

}  // namespace vela::grid

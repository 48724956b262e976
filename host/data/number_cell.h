// One number of a column and its text.
#pragma once

#include <string_view>

#include "frame/interface/complex.h"

namespace vela::host {

// Room for the text of any number.
inline constexpr int kCellTextSize = 96;

// Whether a text stands for a number as columns have them: by the text-to-number rule, and inf,
// -inf and nan as well, so that what was saved is read as it was. Empty text is the missing value.
bool ReadNumberCell(std::string_view text, double& value);
// The same for a complex value, 1+2i, or a number.
bool ReadComplexCell(std::string_view text, OneTCcomplex& value);

// The shortest text that reads back as the same number, without a terminator; nothing for the
// missing value. Returns the end.
char* WriteNumberCell(double value, char* buffer);

// The element at address, of a number type, by the rule of WriteNumberCell; integers with all their
// digits, complex values as 1+2i.
char* WriteElementCell(unsigned type_id, const void* element, char* buffer);
// Sets the element from a text by the text-to-number rule.
void ReadElementCell(unsigned type_id, std::string_view text, void* element);

}  // namespace vela::host

// Any value as text: operands of the operators, and elements of vectors.
#pragma once

#include <vector>

#include "frame/container/layer.h"
#include "frame/interface/object_argument.h"
#include "frame/interface/string_utf8.h"

namespace vela::text {

// An operand of Operate2 or CompareVals as its text; a char is one character. A status.
int OperandText(const tagMSOOBJVECT& operand, CStringUTF8& text);

// The elements of a layer of any container as texts, a char as its number. Throws std::bad_alloc.
std::vector<CStringUTF8> ElementTexts(const Layer& source);

// The number that a text reads as; the missing value when it reads as none.
double NumberOf(const CStringUTF8& text);

}  // namespace vela::text

#pragma once

#include "tesselc/syntax_tree.h"

namespace tesselc {

// Whether the expression is made of number literals, constants and operators alone.
bool IsConstantExpression(const Expression& expression);

}  // namespace tesselc

#pragma once

#include <string>

#include "tesselc/syntax_tree.h"

namespace tesselc {

// Trees as S-expressions, for comparison with what a test expects: "(+ 1 (* 2 3))", "(= a 1)",
// "(if c (block) (break))". A flat chain is shown nested, as it is evaluated.
std::string ToText(const Expression& expression);
std::string ToText(const Statement& statement);
std::string ToText(const Function& function);
// Functions first, then statements, separated by one space.
std::string ToText(const Program& program);

}  // namespace tesselc

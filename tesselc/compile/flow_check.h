#pragma once

#include "tesselc/syntax_tree.h"

namespace tesselc {

// Whether control can reach the end of a statement, as far as its form tells: loops without a
// condition end only by break, and calls of exit() not at all.
bool CanReachEnd(const Statement& statement);

}  // namespace tesselc

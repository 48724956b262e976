// The terminal that a stream of the program may be.
#pragma once

#include <cstdio>

namespace tesselc {

bool IsTerminal(std::FILE* stream);
// Whether colours are welcome there: on a terminal, unless the environment says otherwise (NO_COLOR
// is set, or TERM is dumb). A Windows console is prepared for them.
bool WantsColours(std::FILE* stream);

}  // namespace tesselc

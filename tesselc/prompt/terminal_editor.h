#pragma once

#include "tesselc/prompt/line_editor.h"

namespace tesselc {

// For standard input and output that are a terminal, one at a time.
std::unique_ptr<LineEditor> MakeTerminalEditor();

}  // namespace tesselc

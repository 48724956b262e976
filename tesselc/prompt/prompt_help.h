// Names and help at a prompt.
#pragma once

#include <string_view>

#include "tesselc/compile/compiler.h"
#include "tesselc/prompt/line_editor.h"
#include "tesselc/run/output.h"

namespace tesselc {

inline constexpr std::string_view kGreeting =
    "Tessel C. An expression without ';' shows its value; help explains, exit or Ctrl-D ends.\n";

// What the word at the end of a text may become: a member behind "name.", otherwise any name known.
Completion CompleteName(std::string_view text, const Compiler& compiler);

// Answers a line that is a command: "help", "help Type", "help Type.Member", or the same with a
// variable; "exit" is for the caller. False for a line that is none.
bool ShowHelp(std::string_view line, const Compiler& compiler, Output& output);

}  // namespace tesselc

#pragma once

#include <vector>

#include "tesselc/diagnostic.h"
#include "tesselc/source.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

struct ParseResult {
  Program program;  // empty unless the text is faultless
  std::vector<Diagnostic> diagnostics;
  // The text is right as far as it goes, but ends in the middle of something: a prompt asks for
  // another line. There is a diagnostic then too.
  bool incomplete = false;
  // All that it lacks is the ';' of a declaration.
  bool lacks_semicolon = false;

  bool ok() const { return diagnostics.empty(); }
};

// Reads a script. Files it includes are added to `sources`, each read once, their functions and
// statements put where the directive stands. Reading stops at the first mistake. Time and memory
// are proportional to the text; nesting is limited, so no text exhausts the stack.
ParseResult ParseProgram(SourceSet& sources, FileId file);

// The same for what was typed at a prompt, where a last expression may do without its ';'
// (ExpressionStatement::terminated tells).
ParseResult ParsePrompt(SourceSet& sources, FileId file);

}  // namespace tesselc

#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tesselc/source.h"

namespace tesselc {

// What is wrong, and where.
struct Diagnostic {
  SourceRange range;
  std::string message;
  std::vector<std::string> notes = {};
  enum class Severity : std::uint8_t { kError, kWarning } severity = Severity::kError;
};

// Whether any of them keeps the script from running.
bool HasErrors(const std::vector<Diagnostic>& diagnostics);

// Thrown inside a pass over the script, and turned into a Diagnostic where the pass was started.
class ScriptMistake {
 public:
  ScriptMistake(SourceRange range, std::string message, std::vector<std::string> notes = {})
      : diagnostic_{range, std::move(message), std::move(notes)} {}
  const Diagnostic& diagnostic() const { return diagnostic_; }

 private:
  Diagnostic diagnostic_;
};

enum class Colours : bool { kOff, kOn };

// "file:line:column: error: message", the source line, a caret under the place and a line "note:
// ..." for each note and each file that includes the other, each ending in a line feed. Tabs are
// kept, so that the caret lines up; a long line is cut around the caret; bytes that are no
// printable text show as '?'.
std::string Format(const Diagnostic& diagnostic, const SourceSet& sources,
                   Colours colours = Colours::kOff);
// "file:line:column".
std::string FormatPlace(const SourceRange& place, const SourceSet& sources);

}  // namespace tesselc

// What is typed at a prompt, as pieces of a script.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "tesselc/prompt/line_editor.h"
#include "tesselc/run/output.h"
#include "tesselc/source.h"

namespace tesselc {

// Reads lines until they are whole statements. An empty line ends a piece that is not, with the
// mistake in it; Ctrl-C discards it.
class PromptText {
 public:
  PromptText(LineEditor& lines, SourceSet& sources, Output& output)
      : lines_(lines), sources_(sources), output_(output) {}

  // The next piece, added to the sources; nothing at the end of the input. A line for which
  // is_command holds, as the first of a piece, is done with.
  std::optional<FileId> Next(const std::function<bool(std::string_view line)>& is_command);

 private:
  LineEditor& lines_;
  SourceSet& sources_;
  Output& output_;
  int count_ = 0;
};

}  // namespace tesselc

// Where a prompt's lines come from.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace tesselc {

// The words that could stand at the end of a text, and where the one that is begun there begins.
struct Completion {
  std::size_t begin = 0;
  std::vector<std::string> words;  // sorted
};
using Completer = std::function<Completion(std::string_view text)>;

class LineEditor {
 public:
  enum class End { kLine, kInterrupted, kEndOfInput };
  virtual ~LineEditor() = default;
  // Reads a line, without its end, behind a prompt. kInterrupted is Ctrl-C: the line is discarded.
  virtual End Read(const std::string& prompt, std::string& line) = 0;
  virtual void SetCompleter(Completer completer) = 0;
  // Whether somebody sees the prompt.
  virtual bool IsInteractive() const = 0;
};

// Editing with history (kept in the user's home) and completion where standard input is a terminal;
// plain lines, without prompts, where it is not.
std::unique_ptr<LineEditor> MakeLineEditor();

}  // namespace tesselc

#include "tesselc/prompt/line_editor.h"

#include <cstdio>
#include <iostream>

#include "tesselc/prompt/terminal_editor.h"
#include "tesselc/run/terminal.h"

namespace tesselc {
namespace {

class PlainLines final : public LineEditor {
 public:
  End Read(const std::string&, std::string& line) override {
    if (!std::getline(std::cin, line)) return End::kEndOfInput;
    if (line.ends_with('\r')) line.pop_back();
    return End::kLine;
  }
  void SetCompleter(Completer) override {}
  bool IsInteractive() const override { return false; }
};

}  // namespace

std::unique_ptr<LineEditor> MakeLineEditor() {
  if (IsTerminal(stdin) && IsTerminal(stdout)) return MakeTerminalEditor();
  return std::make_unique<PlainLines>();
}

}  // namespace tesselc

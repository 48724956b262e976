#include "tesselc/prompt/prompt_text.h"

#include "tesselc/parser.h"

namespace tesselc {

std::optional<FileId> PromptText::Next(const std::function<bool(std::string_view)>& is_command) {
  std::string piece, line;
  for (;;) {
    output_.Flush();
    switch (lines_.Read(piece.empty() ? "> " : "... ", line)) {
      case LineEditor::End::kInterrupted:
        piece.clear();
        continue;
      case LineEditor::End::kEndOfInput:
        // Half a statement at the end of a file is a mistake to be told.
        if (piece.empty()) return std::nullopt;
        return sources_.Add("line " + std::to_string(++count_), std::move(piece));
      case LineEditor::End::kLine:
        break;
    }
    const bool is_blank = line.find_first_not_of(" \t") == line.npos;
    if (piece.empty() && (is_blank || is_command(line))) continue;
    piece += line + "\n";
    // The text is looked at in a set of its own: it may be half a statement.
    SourceSet trial;
    const FileId file = trial.Add("line", piece);
    const ParseResult parsed = ParsePrompt(trial, file);
    if (parsed.lacks_semicolon) piece.back() = ';';
    if (is_blank || parsed.lacks_semicolon || !parsed.incomplete) {
      return sources_.Add("line " + std::to_string(++count_), std::move(piece));
    }
  }
}

}  // namespace tesselc

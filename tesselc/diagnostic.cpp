#include "tesselc/diagnostic.h"

#include <algorithm>
#include <string_view>

#include "tesselc/utf8_text.h"

namespace tesselc {

namespace {

constexpr std::size_t kShownWidth = 100;  // characters of a source line
constexpr std::size_t kShownBefore = 60;  // of these at most so many left of the caret

struct Printable {
  std::vector<std::string> characters;
  std::size_t caret = 0;  // index of the character above the caret
};

// Only the neighbourhood of the caret is looked at, so that a line of a gigabyte costs nothing.
Printable MakePrintable(std::string_view line, std::size_t caret_byte) {
  Printable result;
  const std::size_t limit = std::min(line.size(), caret_byte + 8 * kShownWidth);
  result.caret = std::string_view::npos;
  for (std::size_t i = 0; i < limit;) {
    if (i >= caret_byte && result.caret == std::string_view::npos) {
      result.caret = result.characters.size();
    }
    const std::size_t length = Utf8SequenceLength(line.substr(i));
    const bool is_control =
        line[i] != '\t' && (static_cast<unsigned char>(line[i]) < 0x20 || line[i] == 0x7F);
    const bool is_text = length > 0 && !is_control;
    result.characters.emplace_back(is_text ? std::string(line.substr(i, length)) : "?");
    i += std::max<std::size_t>(length, 1);
  }
  result.caret = std::min(result.caret, result.characters.size());
  return result;
}

// The line and the caret line. A caret past the line's end stands behind its last character.
std::string Excerpt(std::string_view line, std::size_t caret_byte) {
  const std::size_t skip = caret_byte > 8 * kShownWidth ? caret_byte - 8 * kShownWidth : 0;
  const Printable shown = MakePrintable(line.substr(skip), caret_byte - skip);
  std::size_t begin = 0;
  std::size_t end = shown.characters.size();
  if (end > kShownWidth || skip > 0) {
    begin = shown.caret > kShownBefore ? shown.caret - kShownBefore : 0;
    end = std::min(end, begin + kShownWidth);
  }
  const bool cut_front = begin > 0 || skip > 0;
  std::string text = cut_front ? "..." : "";
  std::string under = cut_front ? "   " : "";
  for (std::size_t i = begin; i < end; ++i) {
    text += shown.characters[i];
    if (i < shown.caret) under += shown.characters[i] == "\t" ? "\t" : " ";
  }
  if (end < shown.characters.size()) text += "...";
  return text + "\n" + under + "^\n";
}

}  // namespace

std::string Format(const Diagnostic& diagnostic, const SourceSet& sources) {
  const SourceFile& file = sources.file(diagnostic.range.file);
  const std::size_t offset = diagnostic.range.offset;
  const LineColumn place = file.Locate(offset);
  const bool is_error = diagnostic.severity == Diagnostic::Severity::kError;
  std::string text = file.name() + ":" + std::to_string(place.line) + ":" +
                     std::to_string(place.column) + (is_error ? ": error: " : ": warning: ") +
                     diagnostic.message + "\n" +
                     Excerpt(file.Line(offset), offset - file.LineStart(offset));
  for (const std::string& note : diagnostic.notes) text += "note: " + note + "\n";
  return text;
}

bool HasErrors(const std::vector<Diagnostic>& diagnostics) {
  return std::ranges::any_of(diagnostics, [](const Diagnostic& diagnostic) {
    return diagnostic.severity == Diagnostic::Severity::kError;
  });
}

}  // namespace tesselc

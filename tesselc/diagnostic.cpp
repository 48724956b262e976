#include "tesselc/diagnostic.h"

#include <algorithm>
#include <string_view>

#include "tesselc/utf8_text.h"

namespace tesselc {

namespace {

constexpr std::size_t kShownWidth = 100;  // characters of a source line
constexpr std::size_t kShownBefore = 60;  // of these at most so many left of the caret

// Of a terminal.
constexpr const char* kBold = "1";
constexpr const char* kRed = "1;31";
constexpr const char* kMagenta = "1;35";
constexpr const char* kCyan = "1;36";

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

// What takes as much room as a character.
std::string Blank(const std::string& character) {
  return character == "\t" ? "\t" : std::string(DisplayWidth(character), ' ');
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
    if (i < shown.caret) under += Blank(shown.characters[i]);
  }
  if (end < shown.characters.size()) text += "...";
  return text + "\n" + under + "^\n";
}

}  // namespace

std::string FormatPlace(const SourceRange& range, const SourceSet& sources) {
  const SourceFile& file = sources.file(range.file);
  const LineColumn place = file.Locate(range.offset);
  return file.name() + ":" + std::to_string(place.line) + ":" + std::to_string(place.column);
}

std::string Format(const Diagnostic& diagnostic, const SourceSet& sources, Colours colours) {
  const auto paint = [colours](const char* colour, const std::string& text) {
    return colours == Colours::kOn ? std::string("\x1B[") + colour + "m" + text + "\x1B[0m" : text;
  };
  const SourceFile& file = sources.file(diagnostic.range.file);
  const std::size_t offset = diagnostic.range.offset;
  const bool is_error = diagnostic.severity == Diagnostic::Severity::kError;
  std::string text = paint(kBold, FormatPlace(diagnostic.range, sources) + ":") + " " +
                     paint(is_error ? kRed : kMagenta, is_error ? "error:" : "warning:") + " " +
                     paint(kBold, diagnostic.message) + "\n" +
                     Excerpt(file.Line(offset), offset - file.LineStart(offset));
  const auto add_note = [&](const std::string& note) {
    text += paint(kCyan, "note:") + " " + note + "\n";
  };
  for (const std::string& note : diagnostic.notes) add_note(note);
  for (SourceRange at = sources.Inclusion(diagnostic.range.file); at.length > 0;
       at = sources.Inclusion(at.file)) {
    add_note("included by " + FormatPlace(at, sources));
  }
  return text;
}

bool HasErrors(const std::vector<Diagnostic>& diagnostics) {
  return std::ranges::any_of(diagnostics, [](const Diagnostic& diagnostic) {
    return diagnostic.severity == Diagnostic::Severity::kError;
  });
}

}  // namespace tesselc

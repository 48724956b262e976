#include "frame/interface/text_encoding.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utf8.h>

namespace vela::text {
namespace {

constexpr TextEncoding kMarked[] = {TextEncoding::kUtf8, TextEncoding::kUtf16Little,
                                    TextEncoding::kUtf16Big};

// Control characters that no text file has.
constexpr bool IsStrange(unsigned unit) {
  return unit < 0x20 && !(unit >= '\t' && unit <= '\r') && unit != 0x1A && unit != 0x1B;
}

unsigned UnitAt(std::string_view bytes, std::size_t at, bool is_big) {
  const unsigned first = static_cast<unsigned char>(bytes[at]);
  const unsigned second = static_cast<unsigned char>(bytes[at + 1]);
  return is_big ? first << 8 | second : second << 8 | first;
}

// Whether the units are text: surrogates in pairs, but for one at the cut, and nothing strange.
bool IsUtf16(std::string_view bytes, bool is_big) {
  bool follows_high = false;
  for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
    const unsigned unit = UnitAt(bytes, at, is_big);
    const bool is_low = unit >= 0xDC00 && unit <= 0xDFFF;
    if (is_low != follows_high || IsStrange(unit)) return false;
    follows_high = unit >= 0xD800 && unit <= 0xDBFF;
  }
  return true;
}

// kBytes unless the zero bytes lie as in UTF-16: nearly all in one half of the units, and in at
// least one unit of ten, as spaces and line ends alone make it.
TextEncoding EncodingOfZeros(std::string_view bytes) {
  std::size_t zeros[2] = {};
  for (std::size_t at = 0; at < bytes.size(); ++at) zeros[at & 1] += bytes[at] == '\0';
  const bool is_big = zeros[0] > zeros[1];
  const std::size_t many = zeros[is_big ? 0 : 1], few = zeros[is_big ? 1 : 0];
  if (few * 10 > many || many * 20 < bytes.size()) return TextEncoding::kBytes;
  if (!IsUtf16(bytes, is_big)) return TextEncoding::kBytes;
  return is_big ? TextEncoding::kUtf16Big : TextEncoding::kUtf16Little;
}

std::size_t FindInvalid(std::string_view text) {
  return static_cast<std::size_t>(utf8::find_invalid(text.begin(), text.end()) - text.begin());
}

// Whether the rest of a text, which begins with no valid character, may be one cut short.
bool MayBeCut(std::string_view rest) {
  if (rest.size() >= 4) return false;
  // Completed with the lowest continuations that follow some lead, it is one character or never
  // will be.
  for (const char* end : {"\x80\x80\x80", "\x90\x80\x80", "\xA0\x80\x80"}) {
    if (FindInvalid(std::string(rest) + end) > rest.size()) return true;
  }
  return false;
}

void AppendUnit(std::string& text, unsigned unit, bool is_big) {
  const char low = static_cast<char>(unit), high = static_cast<char>(unit >> 8);
  text += is_big ? high : low;
  text += is_big ? low : high;
}

void AppendUtf16(std::string& text, char32_t code_point, bool is_big) {
  if (code_point >= 0x10000) {
    AppendUnit(text, 0xD7C0 + (code_point >> 10), is_big);
    AppendUnit(text, 0xDC00 + (code_point & 0x3FF), is_big);
  } else {
    AppendUnit(text, code_point, is_big);
  }
}

constexpr bool IsHighSurrogate(unsigned unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
constexpr bool IsLowSurrogate(unsigned unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

std::string Utf8OfUtf16(std::string_view bytes, bool is_big) {
  std::string text;
  text.reserve(bytes.size() / 2);
  std::size_t at = 0;
  while (at + 1 < bytes.size()) {
    const unsigned unit = UnitAt(bytes, at, is_big);
    at += 2;
    if (unit < 0x80) {
      text += static_cast<char>(unit);
    } else if (!IsHighSurrogate(unit)) {
      utf8::append(IsLowSurrogate(unit) ? U'\uFFFD' : char32_t{unit}, std::back_inserter(text));
    } else {
      const unsigned low = at + 1 < bytes.size() ? UnitAt(bytes, at, is_big) : 0;
      if (!IsLowSurrogate(low)) {
        text += kReplacement;
        continue;
      }
      at += 2;
      utf8::append(0x10000 + ((char32_t{unit} - 0xD800) << 10) + (low - 0xDC00),
                   std::back_inserter(text));
    }
  }
  if (at < bytes.size()) text += kReplacement;
  return text;
}

}  // namespace

std::string_view MarkOf(TextEncoding encoding) {
  switch (encoding) {
    case TextEncoding::kUtf8:
      return "\xEF\xBB\xBF";
    case TextEncoding::kUtf16Little:
      return "\xFF\xFE";
    case TextEncoding::kUtf16Big:
      return "\xFE\xFF";
    default:
      return {};
  }
}

TextEncoding EncodingOfMark(std::string_view bytes) {
  for (const TextEncoding encoding : kMarked) {
    if (bytes.starts_with(MarkOf(encoding))) return encoding;
  }
  return TextEncoding::kBytes;
}

TextEncoding DetectEncoding(std::string_view bytes, bool is_whole) {
  TextEncoding encoding = EncodingOfMark(bytes);
  if (encoding == TextEncoding::kBytes) encoding = EncodingOfZeros(bytes);
  if (encoding != TextEncoding::kBytes) return encoding;
  const std::size_t invalid = FindInvalid(bytes);
  const bool is_valid = invalid == bytes.size() || (!is_whole && MayBeCut(bytes.substr(invalid)));
  return is_valid ? TextEncoding::kUtf8 : TextEncoding::kBytes;
}

std::string EncodeText(std::string_view text, TextEncoding encoding) {
  if (encoding != TextEncoding::kUtf16Little && encoding != TextEncoding::kUtf16Big) {
    return std::string(text);
  }
  const bool is_big = encoding == TextEncoding::kUtf16Big;
  std::string encoded;
  encoded.reserve(text.size() * 2);
  while (!text.empty()) {
    const std::size_t valid = FindInvalid(text);
    for (auto at = text.begin(); at != text.begin() + static_cast<std::ptrdiff_t>(valid);) {
      AppendUtf16(encoded, utf8::unchecked::next(at), is_big);
    }
    if (valid < text.size()) AppendUtf16(encoded, U'\uFFFD', is_big);
    text.remove_prefix(std::min(valid + 1, text.size()));
  }
  return encoded;
}

std::string DecodeText(std::string text, TextEncoding encoding) {
  const std::string_view mark = MarkOf(encoding);
  const std::size_t skipped = !mark.empty() && text.starts_with(mark) ? mark.size() : 0;
  if (encoding == TextEncoding::kUtf16Little || encoding == TextEncoding::kUtf16Big) {
    return Utf8OfUtf16(std::string_view(text).substr(skipped), encoding == TextEncoding::kUtf16Big);
  }
  text.erase(0, skipped);
  return text;
}

}  // namespace vela::text

#include "text/text_encoding.h"

#include <cstdint>
#include <cstring>

#include "text/utf8_character.h"

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

bool HasHighBit(const char* text) {
  std::uint64_t eight;
  std::memcpy(&eight, text, sizeof eight);
  return (eight & 0x8080808080808080u) != 0;
}

// Whether the rest of a text may be a character cut short.
bool MayBeCut(std::string_view rest) {
  if (rest.size() >= 4) return false;
  // Completed with the lowest continuations that follow some lead, it is one character or never
  // will be.
  for (const char* end : {"\x80\x80\x80", "\x90\x80\x80", "\xA0\x80\x80"}) {
    const std::string whole = std::string(rest) + end;
    if (CharacterBytes(whole) > rest.size()) return true;
  }
  return false;
}

void AppendUnit(std::string& text, unsigned unit, bool is_big) {
  const char low = static_cast<char>(unit), high = static_cast<char>(unit >> 8);
  text += is_big ? high : low;
  text += is_big ? low : high;
}

// The code point of one valid sequence.
char32_t CodePoint(std::string_view sequence) {
  const auto lead = static_cast<unsigned char>(sequence[0]);
  if (sequence.size() == 1) return lead;
  char32_t code_point = lead & (0x7Fu >> sequence.size());
  for (const char ch : sequence.substr(1)) {
    code_point = code_point << 6 | (static_cast<unsigned char>(ch) & 0x3F);
  }
  return code_point;
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
  const std::size_t invalid = FindInvalidUtf8(bytes);
  const bool is_valid = invalid == bytes.size() || (!is_whole && MayBeCut(bytes.substr(invalid)));
  return is_valid ? TextEncoding::kUtf8 : TextEncoding::kBytes;
}

std::size_t FindInvalidUtf8(std::string_view text) {
  std::size_t at = 0;
  while (at < text.size()) {
    if (static_cast<unsigned char>(text[at]) < 0x80) {
      ++at;
      while (at + 8 <= text.size() && !HasHighBit(text.data() + at)) at += 8;
      continue;
    }
    const std::size_t bytes = CharacterBytes(text.substr(at));
    if (bytes == 1) break;
    at += bytes;
  }
  return at;
}

std::string EncodeText(std::string_view text, TextEncoding encoding) {
  if (encoding != TextEncoding::kUtf16Little && encoding != TextEncoding::kUtf16Big) {
    return std::string(text);
  }
  const bool is_big = encoding == TextEncoding::kUtf16Big;
  std::string encoded;
  encoded.reserve(text.size() * 2);
  while (!text.empty()) {
    const std::size_t bytes = CharacterBytes(text);
    const bool is_valid = bytes > 1 || static_cast<unsigned char>(text[0]) < 0x80;
    const char32_t code_point = is_valid ? CodePoint(text.substr(0, bytes)) : U'\uFFFD';
    if (code_point >= 0x10000) {
      AppendUnit(encoded, 0xD7C0 + (code_point >> 10), is_big);
      AppendUnit(encoded, 0xDC00 + (code_point & 0x3FF), is_big);
    } else {
      AppendUnit(encoded, code_point, is_big);
    }
    text.remove_prefix(bytes);
  }
  return encoded;
}

}  // namespace vela::text

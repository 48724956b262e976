#include "text/utf8_character.h"

#include <algorithm>

namespace vela::text {
namespace {

constexpr std::size_t kMostBytes = 4;

constexpr bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Bytes of the sequence that a lead byte begins, and the range of its second byte: narrower where a
// shorter sequence, a surrogate or no code point would follow. 0 bytes for a byte that leads none.
struct Lead {
  std::size_t bytes;
  unsigned char second_low = 0x80;
  unsigned char second_high = 0xBF;
};

constexpr Lead LeadOf(unsigned char byte) {
  if (byte < 0x80) return {1};
  if (byte < 0xC2) return {0};
  if (byte < 0xE0) return {2};
  if (byte == 0xE0) return {3, 0xA0};
  if (byte == 0xED) return {3, 0x80, 0x9F};
  if (byte < 0xF0) return {3};
  if (byte == 0xF0) return {4, 0x90};
  if (byte < 0xF4) return {4};
  if (byte == 0xF4) return {4, 0x80, 0x8F};
  return {0};
}

}  // namespace

std::size_t CharacterBytes(std::string_view text) {
  const Lead lead = LeadOf(static_cast<unsigned char>(text.front()));
  if (lead.bytes < 2 || lead.bytes > text.size()) return 1;
  const auto second = static_cast<unsigned char>(text[1]);
  if (second < lead.second_low || second > lead.second_high) return 1;
  const std::string_view rest = text.substr(2, lead.bytes - 2);
  return std::all_of(rest.begin(), rest.end(), IsContinuation) ? lead.bytes : 1;
}

std::size_t WholeCharacters(std::string_view text, std::size_t most) {
  if (most >= text.size()) return text.size();
  // A character across the cut begins at most three bytes in front of it.
  for (std::size_t back = 1; back < kMostBytes && back <= most; ++back) {
    if (IsContinuation(text[most - back])) continue;
    return CharacterBytes(text.substr(most - back)) > back ? most - back : most;
  }
  return most;
}

std::size_t NextCharacterStart(std::string_view text, std::size_t least) {
  if (least >= text.size()) return text.size();
  const std::size_t start = WholeCharacters(text, least);
  return start == least ? least : start + CharacterBytes(text.substr(start));
}

void AppendCodePoint(std::string& text, char32_t code_point) {
  const bool is_surrogate = code_point >= 0xD800 && code_point <= 0xDFFF;
  if (code_point > 0x10FFFF || is_surrogate) code_point = 0xFFFD;
  const auto continuation = [&](int shift) {
    return static_cast<char>(0x80 | ((code_point >> shift) & 0x3F));
  };
  if (code_point < 0x80) {
    text += static_cast<char>(code_point);
  } else if (code_point < 0x800) {
    text += {static_cast<char>(0xC0 | (code_point >> 6)), continuation(0)};
  } else if (code_point < 0x10000) {
    text += {static_cast<char>(0xE0 | (code_point >> 12)), continuation(6), continuation(0)};
  } else {
    text += {static_cast<char>(0xF0 | (code_point >> 18)), continuation(12), continuation(6),
             continuation(0)};
  }
}

}  // namespace vela::text

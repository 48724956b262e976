#include "text/text_encoding.h"

#include <cstdint>
#include <cstring>

#include "text/utf8_character.h"

namespace vela::text {
namespace {

bool HasHighBit(const char* text) {
  std::uint64_t eight;
  std::memcpy(&eight, text, sizeof eight);
  return (eight & 0x8080808080808080u) != 0;
}

}  // namespace

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

}  // namespace vela::text

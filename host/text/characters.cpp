#include "host/text/characters.h"

#include <algorithm>
#include <cstring>
#include <utf8.h>

#include "host/text/byte_scan.h"

namespace vela::host {
namespace {

constexpr std::size_t kBlock = sizeof(std::uint64_t);

bool IsAsciiBlock(const char* bytes) {
  std::uint64_t block;
  std::memcpy(&block, bytes, kBlock);
  return (block & 0x8080808080808080u) == 0;
}

// Blocks of ASCII in front of [from, to), in bytes.
std::size_t AsciiBlocks(const char* from, const char* to) {
  const char* at = from;
  while (static_cast<std::size_t>(to - at) >= kBlock && IsAsciiBlock(at)) at += kBlock;
  return static_cast<std::size_t>(at - from);
}

}  // namespace

char32_t CharacterReader::NextBeyondAscii() {
  if (at_ >= valid_end_) {
    // A window is enough to see a sequence whole; one that the window cuts starts the next.
    valid_end_ = utf8::find_invalid(at_, at_ + std::min(window_, end_ - at_));
    window_ = std::min(2 * window_, kMostWindow);
    if (valid_end_ == at_) return kInvalidByte + static_cast<unsigned char>(*at_++);
  }
  return static_cast<char32_t>(utf8::unchecked::next(at_));
}

std::size_t CharacterReader::SkipAscii(std::size_t most) {
  const auto left = static_cast<std::size_t>(end_ - at_);
  const std::size_t skipped = AsciiBlocks(at_, at_ + std::min(left, most));
  at_ += skipped;
  return skipped;
}

CharacterSet::CharacterSet(std::string_view characters) {
  for (CharacterReader reader(characters); !reader.AtEnd();) {
    const char32_t character = reader.Next();
    if (character < 0x80) {
      ascii_.set(character);
    } else {
      others_.push_back(character);
    }
  }
  std::sort(others_.begin(), others_.end());
}

bool CharacterSet::ContainsBeyondAscii(char32_t character) const {
  return std::binary_search(others_.begin(), others_.end(), character);
}

bool IsAscii(std::string_view text) { return AsciiPrefix(text) == text.size(); }

bool IsValidUtf8(std::string_view text) { return utf8::is_valid(text.begin(), text.end()); }

bool IsWhiteSpace(char32_t character) {
  switch (character) {
    case 0x20:
    case 0x85:
    case 0xA0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
      return true;
    default:
      return (character >= 0x09 && character <= 0x0D) ||
             (character >= 0x2000 && character <= 0x200A);
  }
}

std::size_t CountCharacters(std::string_view text) {
  std::size_t count = 0;
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    const std::size_t ascii = AsciiBlocks(at, end);
    count += ascii;
    at += ascii;
    if (at == end) break;
    const char* valid_end = utf8::find_invalid(at, at + std::min<std::ptrdiff_t>(64, end - at));
    if (valid_end == at) {
      ++count;
      ++at;
    }
    // A valid run has as many characters as bytes that continue none.
    for (; at < valid_end; ++at) count += (static_cast<unsigned char>(*at) & 0xC0) != 0x80;
  }
  return count;
}

std::size_t PositionOfCharacter(std::string_view text, std::size_t index) {
  CharacterReader reader(text);
  while (index > 0 && !reader.AtEnd()) {
    if (index >= kBlock) {
      const std::size_t skipped = reader.SkipAscii(index);
      index -= skipped;
      if (index == 0 || reader.AtEnd()) break;
    }
    reader.Next();
    --index;
  }
  return reader.Position();
}

char32_t LastCharacter(std::string_view text, std::size_t* size) {
  // A lead byte always starts a character, so the last sequence is valid on its own or not at all.
  for (std::size_t length = 1; length <= std::min<std::size_t>(4, text.size()); ++length) {
    const std::string_view last = text.substr(text.size() - length);
    if ((static_cast<unsigned char>(last.front()) & 0xC0) == 0x80) continue;
    CharacterReader reader(last);
    const char32_t character = reader.Next();
    if (!reader.AtEnd()) break;
    *size = length;
    return character;
  }
  *size = 1;
  return kInvalidByte + static_cast<unsigned char>(text.back());
}

}  // namespace vela::host

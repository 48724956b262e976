// Full Unicode case mapping and case folding, independent of any language. Invalid bytes stay as
// they are, and no context reaches across one.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include "host/text/characters.h"

namespace vela::host {

enum class LetterCase { kUpper, kLower };

// The text in the given case.
std::string MapCase(std::string_view text, LetterCase letter_case);
void MapAsciiCase(char* text, std::size_t length, LetterCase letter_case);

// What a character becomes for a comparison without regard to case.
struct Folded {
  std::array<char32_t, 3> characters;
  int count;
};

// The platform's part of the two, given valid text and a code point beyond ASCII.
void AppendMappedCase(std::string_view valid, LetterCase letter_case, std::string& to);
Folded FoldCodePoint(char32_t character);

// A character that folding changes, and the first of what it becomes.
struct FoldedTo {
  char32_t first;
  char32_t character;
};

// All of them that become what begins with the given character.
std::span<const FoldedTo> CharactersFoldedTo(char32_t first);

// As FoldCodePoint, by a table, for the characters of two bytes.
const Folded& FoldTwoBytes(char32_t character);

inline Folded FoldCharacter(char32_t character) {
  if (character >= 0x80 && character < 0x800) return FoldTwoBytes(character);
  if (character >= 0x80 && character < kInvalidByte) return FoldCodePoint(character);
  const bool upper = character >= 'A' && character <= 'Z';
  return {{upper ? character + ('a' - 'A') : character}, 1};
}

}  // namespace vela::host

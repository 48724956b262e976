// The characters of UTF-8 text. A byte that belongs to no valid sequence is a character of its own.
#pragma once

#include <string>
#include <string_view>

namespace vela::text {

// Bytes of the first character of a text that has one.
std::size_t CharacterBytes(std::string_view text);

// The most bytes, at most `most`, that text can be cut to without cutting a character.
std::size_t WholeCharacters(std::string_view text, std::size_t most);
// The first position at or after `least` where a character begins; the text's size at most.
std::size_t NextCharacterStart(std::string_view text, std::size_t least);

// Appends a code point; one that is none becomes U+FFFD.
void AppendCodePoint(std::string& text, char32_t code_point);

}  // namespace vela::text

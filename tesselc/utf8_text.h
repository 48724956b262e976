#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tesselc {

// The length of the well-formed UTF-8 sequence at the front of `text`, 0 when there is none.
std::size_t Utf8SequenceLength(std::string_view text);

// The character at the front of `text`, which must begin with a well-formed sequence.
char32_t Utf8CodePoint(std::string_view text);

// How many columns of a terminal the sequence at the front of `text` takes: 0 for a mark that
// combines with the character before it, 2 for the wide characters of East Asia and for emoji, 1
// for all others and for what is no sequence.
std::size_t DisplayWidth(std::string_view text);

// `code_point` must be one that Unicode has.
void AppendUtf8(char32_t code_point, std::string& text);

}  // namespace tesselc

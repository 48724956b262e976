#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tesselc {

// The length of the well-formed UTF-8 sequence at the front of `text`, 0 when there is none.
std::size_t Utf8SequenceLength(std::string_view text);

// `code_point` must be one that Unicode has.
void AppendUtf8(char32_t code_point, std::string& text);

}  // namespace tesselc

// The encodings of text files.
#pragma once

#include "frame/interface/text_encoding.h"

namespace vela::text {

// Where the first byte is that belongs to no valid UTF-8 sequence; the size when there is none.
// Plain ASCII costs a test per eight bytes.
std::size_t FindInvalidUtf8(std::string_view text);

}  // namespace vela::text

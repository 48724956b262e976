// Pieces of text from a stream.
#pragma once

#include <string>

#include "platform/file_stream.h"

namespace vela::text {

enum class ScanMode : int { kWord = 0, kLine = 1, kNumber = 2 };

// The next piece, of at most `most` bytes; empty at the end, in another mode, and when most is 0,
// which reads nothing. A word and a number skip the white space in front; a number is an optional
// sign, digits with an optional point, and an optional exponent. A line drops its end, LF, CR LF or
// CR.
std::string Scan(platform::FileStream& stream, ScanMode mode, std::size_t most);

}  // namespace vela::text

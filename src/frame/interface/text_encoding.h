// The encodings of text files, which the host detects and converts.
#pragma once

#include <string>
#include <string_view>

#include "frame/interface/export.h"

namespace vela::text {

// As the file members number them.
enum class TextEncoding : unsigned {
  kBytes = 0,  // any other text of 8-bit characters, passed through as it is
  kUtf8 = 1,
  kUtf16Little = 2,
  kUtf16Big = 3,
};
inline constexpr unsigned kEncodings = 4;
// What "DetectEncode" gives for an empty or unreadable file.
inline constexpr int kUnknownEncoding = 255;

inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

inline constexpr std::size_t kMostMarkBytes = 3;
// The byte-order mark of an encoding; empty for kBytes.
VELAHOST_API std::string_view MarkOf(TextEncoding encoding);
// The encoding whose mark the bytes begin with; kBytes without one.
VELAHOST_API TextEncoding EncodingOfMark(std::string_view bytes);

// Guesses from a text, or from its first bytes, which may end inside a character: by the mark, then
// the zero bytes that UTF-16 leaves in every second place, then by whether it is valid UTF-8, as
// plain ASCII is.
VELAHOST_API TextEncoding DetectEncoding(std::string_view bytes, bool is_whole);

// UTF-8 text in the given encoding; invalid sequences become U+FFFD in UTF-16. No mark is added.
VELAHOST_API std::string EncodeText(std::string_view text, TextEncoding encoding);
// UTF-16 as UTF-8; what is invalid becomes U+FFFD. Text in the other encodings is passed through. A
// mark at the beginning is dropped.
VELAHOST_API std::string DecodeText(std::string text, TextEncoding encoding);

}  // namespace vela::text

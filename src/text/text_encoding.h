// The encodings of text files.
#pragma once

#include <string>
#include <string_view>

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

inline constexpr std::size_t kMostMarkBytes = 3;
// The byte-order mark of an encoding; empty for kBytes.
std::string_view MarkOf(TextEncoding encoding);
// The encoding whose mark the bytes begin with; kBytes without one.
TextEncoding EncodingOfMark(std::string_view bytes);

// Guesses from a text, or from its first bytes, which may end inside a character: by the mark, then
// the zero bytes that UTF-16 leaves in every second place, then by whether it is valid UTF-8, as
// plain ASCII is.
TextEncoding DetectEncoding(std::string_view bytes, bool is_whole);

// UTF-8 text in the given encoding; invalid sequences become U+FFFD in UTF-16. No mark is added.
std::string EncodeText(std::string_view text, TextEncoding encoding);

// Where the first byte is that belongs to no valid UTF-8 sequence; the size when there is none.
// Plain ASCII costs a test per eight bytes.
std::size_t FindInvalidUtf8(std::string_view text);

inline constexpr std::string_view kReplacement = "\xEF\xBF\xBD";  // U+FFFD

}  // namespace vela::text

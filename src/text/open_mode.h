// The flags with which scripts open files.
#pragma once

#include "platform/file_handle.h"
#include "platform/file_stream.h"

namespace vela::text {

namespace open_flag {
inline constexpr unsigned kAccessMask = 3;  // the numbers of platform::FileAccess
inline constexpr unsigned kSharingMask = 0x70;
inline constexpr unsigned kShareExclusive = 0x10;
inline constexpr unsigned kShareDenyWrite = 0x20;
inline constexpr unsigned kShareDenyRead = 0x30;
inline constexpr unsigned kShareDenyNone = 0x40;
inline constexpr unsigned kNoInherit = 0x80;
inline constexpr unsigned kCreate = 0x1000;
inline constexpr unsigned kNoTruncate = 0x2000;
inline constexpr unsigned kUnicodeText = 0x4000;
inline constexpr unsigned kBinary = 0x8000;
}  // namespace open_flag

// Without a sharing flag, and with any that is none of the four, the file is shared with nobody.
platform::FileOptions OptionsOf(unsigned flags);

// How the buffered stream works. It appends when the file is created without being emptied, and
// when it exists and is only written. Unless it is binary, its text operations translate line ends
// where that is the platform's custom.
platform::FileStream::Mode StreamModeOf(unsigned flags);

// Whether the text is in the encoding of the file's mark; and whether it is added to a file that
// may have one without being read.
bool IsText(unsigned flags);
bool AddsText(unsigned flags);

// Whether the stream knows the encoding of its text without a mark too: asked for by flag, except
// for plain text that is only written.
bool IsUnicodeStream(unsigned flags);

}  // namespace vela::text

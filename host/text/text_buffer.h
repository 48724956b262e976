// The buffers behind CStringUTF8: text with a header in front, shared by counting. Every function
// takes the address of the text, as the string keeps it. Lengths are bytes without the terminator.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "frame/interface/string_utf8.h"

namespace vela::host::text_buffer {

inline constexpr std::int64_t kMaxLength = CStringUTF8::kMostBytes;

struct alignas(16) Header {
  std::atomic<std::int32_t> references;  // or one of the states below
  std::int32_t length;
  std::int32_t capacity;
};
static_assert(sizeof(Header) == 16);

// Buffers in these states belong to one string, and a copy of it gets its own.
inline constexpr std::int32_t kLocked = -1;  // until the string is unlocked, a new buffer included
inline constexpr std::int32_t kLent = -2;    // until the length is set
// The one empty text that nobody owns and nobody writes to.
inline constexpr std::int32_t kStatic = 0;

inline const Header& HeaderOf(const char* text) {
  return reinterpret_cast<const Header*>(text)[-1];
}
inline Header& HeaderOf(char* text) { return reinterpret_cast<Header*>(text)[-1]; }

inline std::string_view View(const char* text) {
  return {text, static_cast<std::size_t>(HeaderOf(text).length)};
}

char* Empty() noexcept;
// A text of the given length whose bytes are unset, and zeros after it, owned by the caller. Throws
// std::length_error beyond kMaxLength, std::bad_alloc.
char* Allocate(std::int64_t length, std::int64_t capacity);
char* New(std::string_view text);
// What a copy of a string holds: the same buffer, or a duplicate of one in a state of its own.
char* Share(char* text);
void Release(char* text) noexcept;

// Whether the one string that holds the buffer may write to it.
bool IsWritable(const char* text) noexcept;
// Makes the buffer writable with room for capacity bytes; keeps the text.
void Reserve(char*& text, std::int64_t capacity);
// For a writable buffer; length is at most its capacity. What was lent is lent no longer.
void SetLength(char* text, std::int64_t length) noexcept;
// Gives the string the buffer fresh instead of its own, which is released.
void Adopt(char*& text, char* fresh) noexcept;
// The string's text becomes content, which may be part of it.
void Assign(char*& text, std::string_view content);
// Replaces removed bytes at position at by inserted, which may be part of the text. Appending again
// and again costs time in proportion to what is appended.
void Splice(char*& text, std::int64_t at, std::int64_t removed, std::string_view inserted);

}  // namespace vela::host::text_buffer

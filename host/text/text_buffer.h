// The buffers behind CStringUTF8: text with a header in front, shared by counting. Every function
// takes the address of the text, as the string keeps it. Lengths are bytes without the terminator.
#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "frame/interface/string_utf8.h"

namespace vela::host::text_buffer {

inline constexpr std::int64_t kMaxLength = CStringUTF8::kMostBytes;

using Header = TextHeader;

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

inline char* Empty() noexcept { return empty_text.text; }
// A text of the given length whose bytes are unset, and zeros after it, owned by the caller. Throws
// std::length_error beyond kMaxLength, std::bad_alloc.
char* Allocate(std::int64_t length, std::int64_t capacity);
char* New(std::string_view text);
// Many texts in one piece of memory: their count, then the texts, which take BytesInBlock each.
struct alignas(16) Block {
  std::atomic<std::int32_t> texts;
};
inline std::size_t BytesInBlock(std::string_view text) {
  return sizeof(Header) + ((text.size() + 16) & ~std::size_t{15});
}
char* PlaceInBlock(Block& block, std::size_t offset, std::string_view text);
// Takes texts off the count; frees the block of which none is left.
void Forget(Block& block, std::int32_t texts) noexcept;
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

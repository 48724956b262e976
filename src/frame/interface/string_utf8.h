// The host's UTF-8 string: every text in the library is held in one.
#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <utility>

#include "frame/interface/export.h"

namespace vela::host {

// What lies in front of a text.
struct alignas(16) TextHeader {
  std::atomic<std::int32_t> references;  // or a state of the buffer, not above 0
  std::int32_t length;
  std::int32_t capacity;
  // Bytes from the start of the block that many texts share to this header; 0 for a text with
  // memory of its own.
  std::int32_t offset_in_block;
};
static_assert(sizeof(TextHeader) == 16);

// The one empty text, whose references are never counted and whose byte is never written.
struct EmptyText {
  TextHeader header;
  char text[16];
};
VELAHOST_API extern EmptyText empty_text;

}  // namespace vela::host

// A reference-counted, copy-on-write, NUL-terminated byte buffer with its length in a header in
// front; one pointer wide. Copies share the buffer until one of them changes; the count is atomic.
// Positions and counts are bytes, except in the Char operations, which count UTF-8 characters (a
// byte that belongs to no valid sequence counts as one character). A null text argument is the
// empty text. Embedded NULs are kept, and count like any other character; a text given as a pointer
// ends at its first one. Allocation failure throws std::bad_alloc, a text beyond
// kMostBytes std::length_error; both leave the string as it was.
class VELAHOST_API CStringUTF8 {
 public:
  static constexpr int kMostBytes = 0x7FFFFFF0;

  CStringUTF8() noexcept : data_(vela::host::empty_text.text) {}
  CStringUTF8(const char* text);
  CStringUTF8(const char* text, int length);
  explicit CStringUTF8(std::string_view text);
  CStringUTF8(const CStringUTF8& other);  // allocates only for a locked buffer
  CStringUTF8(CStringUTF8&& other) noexcept
      : data_(std::exchange(other.data_, vela::host::empty_text.text)) {}
  ~CStringUTF8() {
    if (data_ != vela::host::empty_text.text) Release();
  }
  CStringUTF8& operator=(const CStringUTF8& other);
  CStringUTF8& operator=(CStringUTF8&& other) noexcept {
    char* const taken = std::exchange(other.data_, vela::host::empty_text.text);
    if (data_ != vela::host::empty_text.text) Release();
    data_ = taken;
    return *this;
  }
  CStringUTF8& operator=(const char* text);
  CStringUTF8& operator=(std::string_view text) {
    vela::host::TextHeader& header = Header();
    const std::size_t room = static_cast<std::size_t>(header.capacity);
    // The text's own memory, when nobody else has it: no call, whatever line comes next.
    if (text.empty() || text.size() > room ||
        header.references.load(std::memory_order_acquire) != 1) {
      return Assign(text);
    }
    std::memmove(data_, text.data(), text.size());
    data_[text.size()] = '\0';
    header.length = static_cast<std::int32_t>(text.size());
    return *this;
  }

  // The same for a text of somebody else's memory that kPadding more readable bytes follow. Texts
  // of every length are copied alike, so that a loop over them never guesses one wrong.
  static constexpr std::size_t kPadding = 128;
  CStringUTF8& AssignPadded(std::string_view text) {
    vela::host::TextHeader& header = Header();
    const std::size_t room = static_cast<std::size_t>(header.capacity);
    if (text.empty() || text.size() + kPadding > room ||
        header.references.load(std::memory_order_acquire) != 1) {
      return AssignWithRoom(text);
    }
    std::size_t copied = 0;
    do {
      std::memcpy(data_ + copied, text.data() + copied, kPadding);
      copied += kPadding;
    } while (copied < text.size());
    data_[text.size()] = '\0';
    header.length = static_cast<std::int32_t>(text.size());
    return *this;
  }

  operator const char*() const { return data_; }
  const char* c_str() const { return data_; }
  std::string_view View() const { return {data_, static_cast<std::size_t>(GetLength())}; }
  int GetLength() const { return Header().length; }
  bool IsEmpty() const { return GetLength() == 0; }
  void Empty();

  // Throw std::out_of_range outside 0 .. length - 1.
  char GetAt(int index) const;
  void SetAt(int index, char ch);

  // < 0, 0, > 0: by bytes, and by full case folding.
  int Compare(const char* text) const;
  int Compare(const CStringUTF8& text) const;
  int CompareNoCase(const char* text) const;
  int CompareNoCase(const CStringUTF8& text) const;
  // Position of the first match at or after start, or -1; a start outside 0 .. length is -1.
  int Find(char ch, int start = 0) const;
  int Find(std::string_view sub, int start = 0) const;
  // Case-insensitive; *matched receives the byte length of the text that matched, which can differ
  // from the length of sub.
  int FindNoCase(std::string_view sub, int start = 0, int* matched = nullptr) const;
  int ReverseFind(char ch) const;
  int FindOneOf(const char* set) const;
  int FindOneOf(const CStringUTF8& set) const;
  // Occurrences of the byte ch.
  int Count(char ch) const;

  // Clip their arguments to the text; negative counts are 0.
  CStringUTF8 Mid(int first) const;
  CStringUTF8 Mid(int first, int count) const;
  CStringUTF8 Left(int count) const;
  CStringUTF8 Right(int count) const;
  // Leading run of characters in (not in) set; the set is of characters, not bytes.
  CStringUTF8 SpanIncluding(const char* set) const;
  CStringUTF8 SpanIncluding(const CStringUTF8& set) const;
  CStringUTF8 SpanExcluding(const char* set) const;
  CStringUTF8 SpanExcluding(const CStringUTF8& set) const;

  // Return the new length. An index below 0 is 0, one past the end is the end.
  int Insert(int index, char ch);
  int Insert(int index, std::string_view text);
  int Delete(int index, int count = 1);
  // Return how many were replaced or removed. An empty old text replaces nothing.
  int Replace(char old_ch, char new_ch);
  int Replace(std::string_view old_text, std::string_view new_text);
  int Remove(char ch);
  CStringUTF8& operator+=(std::string_view text);
  CStringUTF8& operator+=(char ch);

  // White space is Unicode white space; a set is a set of characters.
  void TrimLeft();
  void TrimLeft(char ch);
  void TrimLeft(const char* set);
  void TrimLeft(const CStringUTF8& set);
  void TrimRight();
  void TrimRight(char ch);
  void TrimRight(const char* set);
  void TrimRight(const CStringUTF8& set);

  // Full Unicode mappings, so that the length can change; invalid bytes stay as they are.
  void MakeUpper();
  void MakeLower();

  // printf-style, with the C library's conversions and a "." decimal point in every locale.
  void Format(const char* format, ...) __attribute__((format(gnu_printf, 2, 3)));
  void FormatV(const char* format, std::va_list arguments);

  // A private writable buffer of at least min_length bytes and a terminator. Valid until
  // ReleaseBuffer or the next change.
  char* GetBuffer(int min_length);
  // The same, with the text's length set to exactly length.
  char* GetBufferSetLength(int length);
  // Sets the length (-1: up to the first NUL), clipped to the buffer.
  void ReleaseBuffer(int new_length = -1);
  void FreeExtra();
  // Keeps copies from sharing the buffer until UnlockBuffer.
  char* LockBuffer();
  void UnlockBuffer();

  // The Char operations take and give positions and counts in characters.
  int CharGetLength() const;
  int CharDelete(int index, int count = 1);
  CStringUTF8 CharLeft(int count) const;
  CStringUTF8 CharRight(int count) const;
  CStringUTF8 CharMid(int first) const;
  CStringUTF8 CharMid(int first, int count) const;
  int CharFind(char ch, int start = 0) const;
  int CharFind(std::string_view sub, int start = 0, bool case_sensitive = true) const;
  int CharReverseFind(char ch) const;
  int CharInsert(int index, char ch);
  int CharInsert(int index, std::string_view text);
  // First byte of the character; throws std::out_of_range.
  char CharGetAt(int index) const;
  // The whole character as text; throws std::out_of_range.
  CStringUTF8 CharTextAt(int index) const;
  void CharSetAt(int index, char ch);
  void CharSetAt(int index, std::string_view text);

  friend bool operator==(const CStringUTF8& a, const CStringUTF8& b) {
    return a.View() == b.View();
  }
  friend auto operator<=>(const CStringUTF8& a, const CStringUTF8& b) {
    return a.View() <=> b.View();
  }

 private:
  friend class CStringUTF8Maker;

  struct Owned {
    char* data;
  };
  explicit CStringUTF8(Owned text) noexcept : data_(text.data) {}

  vela::host::TextHeader& Header() const {
    return reinterpret_cast<vela::host::TextHeader*>(data_)[-1];
  }
  CStringUTF8& Assign(std::string_view text);
  CStringUTF8& AssignWithRoom(std::string_view text);
  void Release() noexcept;

  char* data_;  // first byte of the text; the header lies in front
};

static_assert(sizeof(CStringUTF8) == sizeof(char*));

// Makes many small texts for less than they cost one by one. They lie together in blocks of at most
// a few kilobytes, of which one text alone keeps the whole. Otherwise they are like any other.
class VELAHOST_API CStringUTF8Maker {
 public:
  // About how many texts are to come, and their bytes together: blocks are no larger than that
  // takes.
  CStringUTF8Maker(std::size_t texts, std::size_t bytes);
  ~CStringUTF8Maker() { Retire(); }
  CStringUTF8Maker(const CStringUTF8Maker&) = delete;
  CStringUTF8Maker& operator=(const CStringUTF8Maker&) = delete;

  // Throws as the constructors of CStringUTF8 do.
  CStringUTF8 Make(std::string_view text);

 private:
  void Begin(std::size_t bytes);
  void Retire();

  std::size_t expected_;   // bytes of blocks to come
  std::size_t begun_ = 0;  // bytes of blocks so far
  char* block_ = nullptr;
  std::size_t size_ = 0;  // of the block
  std::size_t used_ = 0;
  std::int32_t made_ = 0;
};

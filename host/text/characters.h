// Walking UTF-8 text by characters. A byte that belongs to no valid sequence is a character of its
// own, told apart from every code point by its value.
#pragma once

#include <bitset>
#include <cstdint>
#include <string_view>
#include <vector>

namespace vela::host {

// The character for the invalid byte b is kInvalidByte + b.
inline constexpr char32_t kInvalidByte = 0x110000;

// Reads a text forward. Costs time only for what is read.
class CharacterReader {
 public:
  explicit CharacterReader(std::string_view text)
      : begin_(text.data()), at_(begin_), end_(begin_ + text.size()), valid_end_(begin_) {}

  bool AtEnd() const { return at_ == end_; }
  // Bytes read.
  std::size_t Position() const { return static_cast<std::size_t>(at_ - begin_); }
  // Requires !AtEnd().
  char32_t Next() {
    const auto byte = static_cast<unsigned char>(*at_);
    if (byte < 0x80) {
      ++at_;
      return byte;
    }
    return NextBeyondAscii();
  }
  // Passes over ASCII characters in whole blocks, at most so many; returns how many.
  std::size_t SkipAscii(std::size_t most);
  // Passes on to find(at, end), a place between characters and in front of the end.
  template <typename Find>
  void SkipTo(Find find) {
    at_ = find(at_, end_);
    if (at_ > valid_end_) window_ = kFirstWindow;
  }

 private:
  char32_t NextBeyondAscii();

  // Bytes to validate at once: a few at first, since a reader may soon skip or stop.
  static constexpr std::ptrdiff_t kFirstWindow = 16;
  static constexpr std::ptrdiff_t kMostWindow = 4096;

  const char* begin_;
  const char* at_;
  const char* end_;
  const char* valid_end_;  // [at_, valid_end_) holds whole valid sequences only
  std::ptrdiff_t window_ = kFirstWindow;
};

// A set of characters, given as text.
class CharacterSet {
 public:
  explicit CharacterSet(std::string_view characters);
  bool Contains(char32_t character) const {
    return character < 0x80 ? ascii_[character] : ContainsBeyondAscii(character);
  }

 private:
  bool ContainsBeyondAscii(char32_t character) const;

  std::bitset<128> ascii_;
  std::vector<char32_t> others_;  // sorted
};

bool IsAscii(std::string_view text);
bool IsValidUtf8(std::string_view text);
bool IsWhiteSpace(char32_t character);
std::size_t CountCharacters(std::string_view text);
// Byte position of character index; the length of the text when it has no more than that many.
std::size_t PositionOfCharacter(std::string_view text, std::size_t index);
// The last character, of which text has at least one, and in *size its bytes.
char32_t LastCharacter(std::string_view text, std::size_t* size);

}  // namespace vela::host

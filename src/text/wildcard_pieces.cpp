#include "text/wildcard_pieces.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "frame/interface/string_utf8.h"
#include "text/utf8_character.h"

namespace vela::text {
namespace {

using Number = std::uint32_t;
using Piece = std::span<const Number>;

constexpr Number kOther = 0;  // a character that the pattern does not have
constexpr Number kAny = ~Number{0};

bool IsAscii(std::string_view character) { return static_cast<unsigned char>(character[0]) < 0x80; }

// Numbers the characters of a pattern from 1 on, equal ones alike.
class Alphabet {
 public:
  explicit Alphabet(bool case_sensitive) : case_sensitive_(case_sensitive) {}

  // A character of the pattern; all of them come before the first one of the text.
  Number Add(std::string_view character) {
    Number& number = Known(character);
    if (number != kOther) return number;
    firsts_.push_back(character);
    return number = Size();
  }
  Number Find(std::string_view character) {
    if (!IsAscii(character)) return Known(character);
    std::optional<Number>& number = ascii_[static_cast<unsigned char>(character[0])];
    if (!number) number = Known(character);
    return *number;
  }
  Number Size() const { return static_cast<Number>(firsts_.size()); }

 private:
  Number& Known(std::string_view character) {
    std::uint32_t key = 0;
    for (const char byte : character) key = key << 8 | static_cast<unsigned char>(byte);
    const auto [at, is_new] = numbers_.try_emplace(key, kOther);
    if (is_new && !case_sensitive_) at->second = NumberOfTwin(character);
    return at->second;
  }

  // Of a character that is the same but for its case.
  Number NumberOfTwin(std::string_view character) const {
    const CStringUTF8 text(character);
    const auto twin = std::find_if(firsts_.begin(), firsts_.end(), [&](std::string_view first) {
      return text.CompareNoCase(CStringUTF8(first)) == 0;
    });
    return twin == firsts_.end() ? kOther : static_cast<Number>(twin - firsts_.begin()) + 1;
  }

  const bool case_sensitive_;
  std::unordered_map<std::uint32_t, Number> numbers_;  // by the bytes
  std::vector<std::string_view> firsts_;               // of each number
  std::array<std::optional<Number>, 128> ascii_;
};

class Reader {
 public:
  Reader(std::string_view text, Alphabet& alphabet) : rest_(text), alphabet_(alphabet) {}

  bool AtEnd() const { return rest_.empty(); }
  Number Next() { return alphabet_.Find(Take()); }
  void Skip() { Take(); }
  std::size_t CountRest() const {
    std::size_t count = 0;
    for (std::string_view rest = rest_; !rest.empty(); ++count) {
      rest.remove_prefix(CharacterBytes(rest));
    }
    return count;
  }

 private:
  std::string_view Take() {
    const std::string_view character = rest_.substr(0, CharacterBytes(rest_));
    rest_.remove_prefix(character.size());
    return character;
  }

  std::string_view rest_;
  Alphabet& alphabet_;
};

// Whether the piece comes next; the reader is then behind it.
bool Accept(Reader& reader, Piece piece) {
  return std::all_of(piece.begin(), piece.end(), [&](Number wanted) {
    if (reader.AtEnd()) return false;
    const Number found = reader.Next();
    return wanted == kAny || wanted == found;
  });
}

// Knuth, Morris and Pratt: to behind the first place of a piece without ?.
bool FindPlain(Reader& reader, Piece piece) {
  std::vector<std::uint32_t> border(piece.size() + 1);
  const auto advance = [&](std::uint32_t matched, Number number) {
    while (matched > 0 && piece[matched] != number) matched = border[matched];
    return piece[matched] == number ? matched + 1 : 0;
  };
  for (std::size_t i = 1; i < piece.size(); ++i) border[i + 1] = advance(border[i], piece[i]);
  for (std::uint32_t matched = 0; !reader.AtEnd();) {
    matched = advance(matched, reader.Next());
    if (matched == piece.size()) return true;
  }
  return false;
}

// Baeza-Yates and Gonnet: to behind the first place of a piece. Bit k of the state tells whether
// the last k + 1 characters are those that the piece begins with.
bool FindAny(Reader& reader, Piece piece, Number alphabet_size) {
  const std::size_t words = (piece.size() + 63) / 64;
  std::vector<std::uint32_t> rows(alphabet_size + 1);  // which masks a character has
  std::uint32_t row_count = 1;
  for (const Number wanted : piece) {
    if (wanted != kAny && rows[wanted] == 0) rows[wanted] = row_count++;
  }
  std::vector<std::uint64_t> masks(row_count * words);
  for (std::size_t i = 0; i < piece.size(); ++i) {
    const std::uint64_t bit = std::uint64_t{1} << (i % 64);
    if (piece[i] != kAny) {
      masks[rows[piece[i]] * words + i / 64] |= bit;
    } else {
      for (std::uint32_t row = 0; row < row_count; ++row) masks[row * words + i / 64] |= bit;
    }
  }
  std::vector<std::uint64_t> state(words);
  while (!reader.AtEnd()) {
    const std::uint64_t* const mask = &masks[rows[reader.Next()] * words];
    std::uint64_t carry = 1;
    for (std::size_t i = 0; i < words; ++i) {
      const std::uint64_t shifted = state[i] << 1 | carry;
      carry = state[i] >> 63;
      state[i] = shifted & mask[i];
    }
    if ((state[words - 1] >> ((piece.size() - 1) % 64) & 1) != 0) return true;
  }
  return false;
}

// Whether the piece is what the text ends with.
bool EndsWith(Reader& reader, Piece piece) {
  const std::size_t left = reader.CountRest();
  if (left < piece.size()) return false;
  for (std::size_t i = piece.size(); i < left; ++i) reader.Skip();
  return Accept(reader, piece);
}

}  // namespace

bool MatchesPieces(std::string_view text, std::string_view pattern, bool case_sensitive) {
  Alphabet alphabet(case_sensitive);
  std::vector<Number> numbers;
  std::vector<std::size_t> piece_ends;
  for (; !pattern.empty(); pattern.remove_prefix(CharacterBytes(pattern))) {
    if (pattern[0] == '*') {
      piece_ends.push_back(numbers.size());
    } else {
      numbers.push_back(
          pattern[0] == '?' ? kAny : alphabet.Add(pattern.substr(0, CharacterBytes(pattern))));
    }
  }
  Reader reader(text, alphabet);
  std::size_t begin = piece_ends.empty() ? numbers.size() : piece_ends.front();
  if (!Accept(reader, Piece(numbers).first(begin))) return false;
  if (piece_ends.empty()) return reader.AtEnd();
  for (const std::size_t end : piece_ends) {
    const Piece piece = Piece(numbers).subspan(begin, end - begin);
    begin = end;
    if (piece.empty()) continue;
    const bool is_plain = std::find(piece.begin(), piece.end(), kAny) == piece.end();
    const bool is_found =
        is_plain ? FindPlain(reader, piece) : FindAny(reader, piece, alphabet.Size());
    if (!is_found) return false;
  }
  return EndsWith(reader, Piece(numbers).subspan(begin));
}

}  // namespace vela::text

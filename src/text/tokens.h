// Splitting a text into tokens.
#pragma once

#include <bit>
#include <emmintrin.h>
#include <span>
#include <string>
#include <string_view>

namespace vela::text {

// Walks the tokens of a text, which must stay as it is meanwhile.
//
// Separator 0: tokens are what lies between runs of ASCII white space; there are no empty ones. Any
// other separator ends a token, so that two in a row hold an empty token and one at the end is
// followed by one; the empty text has none.
//
// A token that begins with a double quote runs to the closing one, separators included; "" inside
// it is one quote, and the outer quotes are dropped. Without a closing quote it runs to the end of
// the text; what follows a closing quote, up to the separator, belongs to the token as it stands. A
// separator that is the double quote leaves no quoting.
//
// Linear in the text; allocates only for quoted tokens that are not one piece of it.
class Tokenizer {
 public:
  explicit Tokenizer(std::string_view text, char separator = 0);

  // The next token, valid until the next call; false when there is none.
  bool Next(std::string_view& token);

  // Reads the next tokens as numbers while there is room and each is, but for white space in front,
  // a decimal in the range of a double: digits with perhaps a minus, a point, an exponent; how
  // many. A value is the double nearest to its token. Tokens in the last few bytes are left to
  // Next.
  std::size_t NextDecimals(std::span<double> values);

  std::string_view Text() const { return text_; }
  // About how many tokens the text has, by those that it begins with.
  std::size_t EstimateCount() const;

 private:
  bool EndsToken(char ch) const { return separator_ == 0 ? IsSpace(ch) : ch == separator_; }
  void SkipSpaces();
  bool NextQuotedBetweenSpaces(std::string_view& token);
  bool NextSeparated(std::string_view& token);
  static __m128i Spaces(__m128i bytes);
  static bool IsSpace(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }
  // Reads the token at position_ and stops at its separator, or at the end.
  std::string_view ReadToken();
  std::string_view ReadPlain();
  std::string_view ReadQuoted();
  // The first separator at or after a position, or the end.
  std::size_t EndOfPlain(std::size_t from) const;

  static constexpr char kQuote = '"';

  std::string_view text_;
  std::size_t position_ = 0;
  char separator_;
  bool at_end_;         // separated tokens: no token follows
  std::string joined_;  // a quoted token that is not one piece of the text
};

// Split here, where callers see it, is what nearly all tokens are.
inline bool Tokenizer::Next(std::string_view& token) {
  if (separator_ != 0) return NextSeparated(token);
  SkipSpaces();
  if (position_ == text_.size()) return false;
  if (text_[position_] == kQuote) return NextQuotedBetweenSpaces(token);
  token = ReadPlain();
  return true;
}

inline std::string_view Tokenizer::ReadPlain() {
  const std::size_t begin = position_;
  position_ = EndOfPlain(begin);
  return text_.substr(begin, position_ - begin);
}

inline std::size_t Tokenizer::EndOfPlain(std::size_t from) const {
  // A look at sixteen bytes at once: most tokens are shorter, and of every length.
  const __m128i separator = _mm_set1_epi8(separator_);
  while (text_.size() - from >= sizeof(__m128i)) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text_.data() + from));
    const __m128i ends = separator_ == 0 ? Spaces(bytes) : _mm_cmpeq_epi8(bytes, separator);
    const auto mask = static_cast<unsigned>(_mm_movemask_epi8(ends));
    if (mask != 0) return from + static_cast<std::size_t>(std::countr_zero(mask));
    from += sizeof(__m128i);
  }
  while (from < text_.size() && !EndsToken(text_[from])) ++from;
  return from;
}

// All bits of the bytes that are ASCII white space.
inline __m128i Tokenizer::Spaces(__m128i bytes) {
  const __m128i controls = _mm_sub_epi8(bytes, _mm_set1_epi8('\t'));
  const __m128i is_control =
      _mm_cmpeq_epi8(_mm_min_epu8(controls, _mm_set1_epi8('\r' - '\t')), controls);
  return _mm_or_si128(is_control, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(' ')));
}

inline void Tokenizer::SkipSpaces() {
  while (position_ < text_.size() && IsSpace(text_[position_])) ++position_;
}

}  // namespace vela::text

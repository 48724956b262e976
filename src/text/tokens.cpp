#include "text/tokens.h"

#include <algorithm>

namespace vela::text {
Tokenizer::Tokenizer(std::string_view text, char separator)
    : text_(text), separator_(separator), at_end_(text.empty()) {}

std::size_t Tokenizer::EstimateCount() const {
  constexpr std::size_t kSampleBytes = 4096;
  // Whatever the sample says, an estimate takes no more memory than twice the text.
  constexpr std::size_t kLeastBytesPerToken = 4;
  Tokenizer sample(text_.substr(0, kSampleBytes), separator_);
  std::size_t count = 0;
  for (std::string_view token; sample.Next(token);) ++count;
  const std::size_t scale = text_.size() / kSampleBytes + 1;
  return std::min(count * scale, std::max(count, text_.size() / kLeastBytesPerToken));
}

// At a quote, which may be that of an empty token.
bool Tokenizer::NextQuotedBetweenSpaces(std::string_view& token) {
  do {
    SkipSpaces();
    if (position_ == text_.size()) return false;
    token = ReadToken();
  } while (token.empty());
  return true;
}

bool Tokenizer::NextSeparated(std::string_view& token) {
  if (at_end_) return false;
  token = ReadToken();
  at_end_ = position_ == text_.size();
  if (!at_end_) ++position_;
  return true;
}

std::string_view Tokenizer::ReadToken() {
  const bool is_quoted =
      position_ < text_.size() && text_[position_] == kQuote && separator_ != kQuote;
  return is_quoted ? ReadQuoted() : ReadPlain();
}

std::string_view Tokenizer::ReadQuoted() {
  joined_.clear();
  std::size_t piece = position_ + 1;
  for (;;) {
    const std::size_t quote = text_.find(kQuote, piece);
    if (quote == std::string_view::npos) {
      position_ = text_.size();
      return joined_.empty() ? text_.substr(piece) : joined_.append(text_.substr(piece));
    }
    if (quote + 1 == text_.size() || text_[quote + 1] != kQuote) {
      position_ = EndOfPlain(quote + 1);
      const std::string_view inside = text_.substr(piece, quote - piece);
      if (joined_.empty() && position_ == quote + 1) return inside;
      joined_.append(inside);
      return joined_.append(text_.substr(quote + 1, position_ - quote - 1));
    }
    // Two quotes: one goes into the token with what lies in front of it.
    joined_.append(text_.substr(piece, quote + 1 - piece));
    piece = quote + 2;
  }
}

}  // namespace vela::text

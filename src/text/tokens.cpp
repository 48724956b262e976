#include "text/tokens.h"

namespace vela::text {
namespace {

constexpr char kQuote = '"';

}  // namespace

Tokenizer::Tokenizer(std::string_view text, char separator)
    : text_(text), separator_(separator), at_end_(text.empty()) {}

bool Tokenizer::Next(std::string_view& token) {
  return separator_ == 0 ? NextBetweenSpaces(token) : NextSeparated(token);
}

bool Tokenizer::NextBetweenSpaces(std::string_view& token) {
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
  EndSeparated();
  return true;
}

std::string_view Tokenizer::ReadToken() {
  const bool is_quoted =
      position_ < text_.size() && text_[position_] == kQuote && separator_ != kQuote;
  if (is_quoted) return ReadQuoted();
  const std::size_t begin = position_;
  position_ = EndOfPlain(begin);
  return text_.substr(begin, position_ - begin);
}

std::size_t Tokenizer::EndOfPlain(std::size_t from) const {
  if (separator_ != 0) {
    const std::size_t end = text_.find(separator_, from);
    return end == std::string_view::npos ? text_.size() : end;
  }
  while (from < text_.size() && !IsSpace(text_[from])) ++from;
  return from;
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

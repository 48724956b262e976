// Splitting a text into tokens.
#pragma once

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

  // As Next, for a token that read(rest of the text) makes something of: it returns how many bytes
  // it read, separators not among them, 0 for none. Unless a token ends right there, nothing is
  // taken; false.
  template <class Read>
  bool TakeIf(Read&& read);

 private:
  bool IsEndOfToken(std::size_t at) const;
  void SkipSpaces();
  bool NextBetweenSpaces(std::string_view& token);
  bool NextSeparated(std::string_view& token);
  void EndSeparated();
  static bool IsSpace(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }
  // Reads the token at position_ and stops at its separator, or at the end.
  std::string_view ReadToken();
  std::string_view ReadQuoted();
  std::size_t EndOfPlain(std::size_t from) const;

  std::string_view text_;
  std::size_t position_ = 0;
  char separator_;
  bool at_end_;         // separated tokens: no token follows
  std::string joined_;  // a quoted token that is not one piece of the text
};

template <class Read>
bool Tokenizer::TakeIf(Read&& read) {
  if (separator_ == 0) SkipSpaces();
  const std::size_t taken = read(text_.substr(position_));
  if (taken == 0 || !IsEndOfToken(position_ + taken)) return false;
  position_ += taken;
  if (separator_ != 0) EndSeparated();
  return true;
}

inline bool Tokenizer::IsEndOfToken(std::size_t at) const {
  return at == text_.size() || (separator_ == 0 ? IsSpace(text_[at]) : text_[at] == separator_);
}

inline void Tokenizer::SkipSpaces() {
  while (position_ < text_.size() && IsSpace(text_[position_])) ++position_;
}

inline void Tokenizer::EndSeparated() {
  at_end_ = position_ == text_.size();
  if (!at_end_) ++position_;
}

}  // namespace vela::text

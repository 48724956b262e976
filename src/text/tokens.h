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

 private:
  bool NextBetweenSpaces(std::string_view& token);
  bool NextSeparated(std::string_view& token);
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

}  // namespace vela::text

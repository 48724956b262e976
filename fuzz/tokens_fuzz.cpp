// Splits any text at any separator: the tokens are those of a plain state machine, and quoted and
// joined again they are split into themselves. Numbers are read as the C library reads them.
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/require.h"
#include "text/tokens.h"

namespace {

using Tokens = std::vector<std::string>;

Tokens Split(std::string_view text, char separator) {
  Tokens tokens;
  vela::text::Tokenizer tokenizer(text, separator);
  for (std::string_view token; tokenizer.Next(token);) tokens.emplace_back(token);
  std::string_view token;
  REQUIRE(!tokenizer.Next(token));
  return tokens;
}

// The rules, one byte at a time.
class PlainSplitter {
 public:
  PlainSplitter(std::string_view text, char separator) : text_(text), separator_(separator) {}

  Tokens Split() {
    for (const char ch : text_) Take(ch);
    const bool ends_with_token = separator_ == 0 ? !token_.empty() : !text_.empty();
    if (ends_with_token) tokens_.push_back(token_);
    return tokens_;
  }

 private:
  enum class State { kStart, kPlain, kQuoted, kAfterQuote };

  bool Separates(char ch) const {
    return separator_ != 0 ? ch == separator_ : ch == ' ' || (ch >= '\t' && ch <= '\r');
  }

  void End() {
    if (separator_ != 0 || !token_.empty()) tokens_.push_back(token_);
    token_.clear();
    state_ = State::kStart;
  }

  void Take(char ch) {
    if (state_ == State::kStart && ch == '"' && separator_ != '"') {
      state_ = State::kQuoted;
    } else if (state_ == State::kQuoted) {
      if (ch == '"') {
        state_ = State::kAfterQuote;
      } else {
        token_ += ch;
      }
    } else if (state_ == State::kAfterQuote && ch == '"') {
      token_ += '"';
      state_ = State::kQuoted;
    } else if (Separates(ch)) {
      End();
    } else {
      token_ += ch;
      state_ = State::kPlain;
    }
  }

  std::string_view text_;
  char separator_;
  State state_ = State::kStart;
  std::string token_;
  Tokens tokens_;
};

std::string Quoted(std::string_view token) {
  std::string quoted = "\"";
  for (const char ch : token) quoted.append(ch == '"' ? 2 : 1, ch);
  return quoted + '"';
}

std::string Joined(const Tokens& tokens, char separator, bool quotes) {
  std::string joined;
  for (std::size_t i = 0; i < tokens.size(); ++i) {
    if (i > 0) joined += separator == 0 ? ' ' : separator;
    joined += quotes ? Quoted(tokens[i]) : tokens[i];
  }
  return joined;
}

// Tokens that are read as decimals are the numbers that the C library reads, and the others
// are as ever.
void CheckNumbers(std::string_view text, char separator) {
  vela::text::Tokenizer with_numbers(text, separator), plain(text, separator);
  std::string_view token, other;
  for (;;) {
    double numbers[3];
    const std::size_t count = with_numbers.NextDecimals(numbers);
    REQUIRE(count <= std::size(numbers));
    for (std::size_t i = 0; i < count; ++i) {
      REQUIRE(plain.Next(token));
      const double number = std::strtod(std::string(token).c_str(), nullptr);
      REQUIRE(std::bit_cast<std::uint64_t>(numbers[i]) == std::bit_cast<std::uint64_t>(number));
    }
    if (!plain.Next(token)) break;
    REQUIRE(with_numbers.Next(other) && token == other);
  }
  REQUIRE(!with_numbers.Next(other));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  const char given = static_cast<char>(data[0]);
  for (const char separator : {'\0', given, ',', '"'}) {
    const Tokens tokens = Split(text, separator);
    REQUIRE(tokens == PlainSplitter(text, separator).Split());
    CheckNumbers(text, separator);
    const bool quotes = separator != '"';
    if (quotes) REQUIRE(Split(Joined(tokens, separator, true), separator) == tokens);
    const bool has_quotes = quotes && text.find('"') != text.npos;
    if (separator != 0 && !has_quotes) REQUIRE(Joined(tokens, separator, false) == text);
  }
  return 0;
}

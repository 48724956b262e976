#include "tesselc/literals.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <limits>
#include <numbers>
#include <optional>
#include <utility>

#include "tesselc/utf8_text.h"

namespace tesselc {

namespace {

[[noreturn]] void Malformed(std::string_view text, const SourceRange& range) {
  throw ScriptMistake(range, "malformed number '" + std::string(text) + "'");
}

int DigitValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return 99;
}

// --- Numbers -----------------------------------------------------------------------------------

enum class Suffix { kNone, kUnsigned, kLong, kUnsignedLong, kFloat, kImaginary };

std::optional<Suffix> ReadSuffix(std::string_view text) {
  constexpr std::pair<std::string_view, Suffix> kSuffixes[] = {
      {"", Suffix::kNone},
      {"u", Suffix::kUnsigned},
      {"ll", Suffix::kLong},
      {"ull", Suffix::kUnsignedLong},
      {"llu", Suffix::kUnsignedLong},
      {"f", Suffix::kFloat},
      {"i", Suffix::kImaginary},
  };
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z' && c != 'I') c = static_cast<char>(c - 'A' + 'a');
  }
  for (const auto& [spelling, suffix] : kSuffixes) {
    if (lower == spelling) return suffix;
  }
  return std::nullopt;
}

// The first type of C's list for the literal that holds the value.
IntLiteral TypedInteger(std::uint64_t value, bool is_decimal, Suffix suffix, std::string_view text,
                        const SourceRange& range) {
  const bool is_unsigned = suffix == Suffix::kUnsigned || suffix == Suffix::kUnsignedLong;
  const bool is_long = suffix == Suffix::kLong || suffix == Suffix::kUnsignedLong;
  if (!is_long) {
    if (!is_unsigned && value <= std::numeric_limits<std::int32_t>::max()) {
      return {value, TypeName::kInt};
    }
    const bool may_be_uint = is_unsigned || !is_decimal;
    if (may_be_uint && value <= std::numeric_limits<std::uint32_t>::max()) {
      return {value, TypeName::kUint};
    }
  }
  if (!is_unsigned && value <= std::uint64_t{std::numeric_limits<std::int64_t>::max()}) {
    return {value, TypeName::kInt64};
  }
  if (suffix == Suffix::kLong) {
    throw ScriptMistake(range, "the number " + std::string(text) + " is too large");
  }
  return {value, TypeName::kUint64};
}

IntLiteral ReadInteger(std::string_view digits, int base, Suffix suffix, std::string_view text,
                       const SourceRange& range) {
  std::uint64_t value = 0;
  const auto [stop, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (error == std::errc::result_out_of_range) {
    throw ScriptMistake(range, "the number " + std::string(text) + " is too large");
  }
  if (error != std::errc{} || stop != digits.data() + digits.size()) Malformed(text, range);
  return TypedInteger(value, base == 10, suffix, text, range);
}

// The power of ten of a decimal number's leading digit, to tell overflow from underflow.
long DecimalMagnitude(std::string_view number) {
  const std::size_t exponent_at = std::min(number.find_first_of("eE"), number.size());
  const std::string_view mantissa = number.substr(0, exponent_at);
  const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
  const std::size_t leading = mantissa.find_first_not_of("0.");
  if (leading == std::string_view::npos) return 0;
  long exponent = 0;
  if (exponent_at < number.size()) {
    std::string_view digits = number.substr(exponent_at + 1);
    const bool negative = digits.starts_with('-');
    if (negative || digits.starts_with('+')) digits.remove_prefix(1);
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), exponent);
    if (result.ec == std::errc::result_out_of_range) exponent = 1'000'000'000;
    exponent = std::min(exponent, 1'000'000'000L) * (negative ? -1 : 1);
  }
  return exponent + static_cast<long>(point) - static_cast<long>(leading);
}

double ReadDouble(std::string_view number, std::string_view text, const SourceRange& range) {
  double value = 0;
  const auto [stop, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error == std::errc::result_out_of_range) {
    if (DecimalMagnitude(number) < 0) return 0.0;
    throw ScriptMistake(range, "the number " + std::string(text) + " is too large");
  }
  if (error != std::errc{} || stop != number.data() + number.size()) Malformed(text, range);
  return value;
}

// How much of a decimal literal is digits, point and exponent; the suffix is behind.
std::size_t DecimalLength(std::string_view text) {
  std::size_t end = std::min(text.find_first_not_of("0123456789."), text.size());
  if (end < text.size() && (text[end] == 'e' || text[end] == 'E')) {
    std::size_t digits = end + 1;
    if (digits < text.size() && (text[digits] == '+' || text[digits] == '-')) ++digits;
    end = std::min(text.find_first_not_of("0123456789", digits), text.size());
  }
  return end;
}

Expression::Node ReadPrefixed(std::string_view text, int base, const SourceRange& range) {
  std::size_t end = 2;
  while (end < text.size() && DigitValue(text[end]) < base) ++end;
  const auto suffix = ReadSuffix(text.substr(end));
  if (!suffix || *suffix == Suffix::kFloat || *suffix == Suffix::kImaginary) {
    Malformed(text, range);
  }
  return ReadInteger(text.substr(2, end - 2), base, *suffix, text, range);
}

Expression::Node ReadDecimal(std::string_view text, const SourceRange& range) {
  const std::string_view number = text.substr(0, DecimalLength(text));
  const auto suffix = ReadSuffix(text.substr(number.size()));
  if (!suffix) Malformed(text, range);
  const bool is_real = number.find_first_of(".eE") != std::string_view::npos;
  switch (*suffix) {
    case Suffix::kImaginary:
      return ImaginaryLiteral{ReadDouble(number, text, range)};
    case Suffix::kFloat: {
      if (!is_real) Malformed(text, range);
      const double value = ReadDouble(number, text, range);
      if (value > std::numeric_limits<float>::max()) {
        throw ScriptMistake(range, "the number " + std::string(text) + " is too large");
      }
      return FloatLiteral{static_cast<float>(value), TypeName::kFloat};
    }
    case Suffix::kNone:
      if (is_real) return FloatLiteral{ReadDouble(number, text, range), TypeName::kDouble};
      break;
    default:
      if (is_real) Malformed(text, range);
  }
  const bool is_octal = number.size() > 1 && number.front() == '0';
  return ReadInteger(number, is_octal ? 8 : 10, *suffix, text, range);
}

// --- Text --------------------------------------------------------------------------------------

// Walks the text between a literal's quotes.
class EscapeReader {
 public:
  EscapeReader(std::string_view text, const SourceRange& range) : text_(text), range_(range) {}

  std::string Read() {
    std::string out;
    out.reserve(text_.size());
    at_ = 1;
    while (at_ + 1 < text_.size()) {
      const char c = text_[at_++];
      if (c == '\\') {
        ReadEscape(out);
      } else {
        out += c;
      }
    }
    return out;
  }

 private:
  [[noreturn]] void Fail(std::size_t begin, const std::string& message) const {
    throw ScriptMistake({range_.file, static_cast<std::uint32_t>(range_.offset + begin),
                         static_cast<std::uint32_t>(at_ - begin)},
                        message);
  }

  // Reads up to `most` digits; false when there is none.
  bool ReadDigits(int base, std::size_t most, std::uint32_t& value) {
    const std::size_t begin = at_;
    value = 0;
    while (at_ + 1 < text_.size() && at_ - begin < most && DigitValue(text_[at_]) < base) {
      value = value * static_cast<std::uint32_t>(base) +
              static_cast<std::uint32_t>(DigitValue(text_[at_++]));
    }
    return at_ > begin;
  }

  void ReadByte(std::size_t begin, int base, std::size_t most, std::string& out) {
    std::uint32_t value = 0;
    if (!ReadDigits(base, most, value)) Fail(begin, "a hexadecimal digit is missing after '\\x'");
    const bool goes_on = base == 16 && at_ + 1 < text_.size() && DigitValue(text_[at_]) < base;
    if (value > 0xFF || goes_on) Fail(begin, "the escape sequence does not fit into one byte");
    out += static_cast<char>(static_cast<unsigned char>(value));
  }

  void ReadCodePoint(std::size_t begin, std::size_t digits, std::string& out) {
    std::uint32_t value = 0;
    ReadDigits(16, digits, value);
    const bool complete = at_ == begin + 2 + digits;
    if (!complete || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) {
      Fail(begin, "the escape sequence names no character");
    }
    AppendUtf8(value, out);
  }

  void ReadEscape(std::string& out) {
    constexpr std::string_view kLetters = "abfnrtv\\'\"?";
    constexpr std::string_view kMeanings = "\a\b\f\n\r\t\v\\'\"?";
    const std::size_t begin = at_ - 1;
    const char c = text_[at_];
    if (const auto index = kLetters.find(c); index != std::string_view::npos) {
      ++at_;
      out += kMeanings[index];
    } else if (DigitValue(c) < 8) {
      ReadByte(begin, 8, 3, out);
    } else if (c == 'x') {
      ++at_;
      ReadByte(begin, 16, 2, out);
    } else if (c == 'u' || c == 'U') {
      ++at_;
      ReadCodePoint(begin, c == 'u' ? 4 : 8, out);
    } else if (c == '\n') {  // the literal goes on in the next line
      ++at_;
    } else if (c == '\r' && text_[at_ + 1] == '\n') {
      at_ += 2;
    } else {
      ++at_;
      Fail(begin, c > ' ' && c < 0x7F ? std::string("unknown escape sequence '\\") + c + "'"
                                      : "unknown escape sequence");
    }
  }

  std::string_view text_;
  SourceRange range_;
  std::size_t at_ = 0;
};

}  // namespace

Expression::Node ReadNumber(std::string_view text, const SourceRange& range) {
  if (text.size() > 1 && text[0] == '0') {
    if (text[1] == 'x' || text[1] == 'X') return ReadPrefixed(text, 16, range);
    if (text[1] == 'b' || text[1] == 'B') return ReadPrefixed(text, 2, range);
  }
  return ReadDecimal(text, range);
}

std::string ReadString(std::string_view text, const SourceRange& range) {
  return EscapeReader(text, range).Read();
}

char ReadCharacter(std::string_view text, const SourceRange& range) {
  const std::string bytes = EscapeReader(text, range).Read();
  if (bytes.empty()) throw ScriptMistake(range, "empty character literal");
  if (bytes.size() > 1) {
    throw ScriptMistake(range, "a character literal holds one byte; use a string for more");
  }
  return bytes[0];
}

Expression::Node ReadConstant(std::string_view word) {
  constexpr std::uint64_t kMissingValueBits = 0x81AA74FE1C132C0E;
  if (word == "NULL") return NullLiteral{};
  if (word == "TRUE" || word == "true") return IntLiteral{1, TypeName::kInt};
  if (word == "FALSE" || word == "false") return IntLiteral{0, TypeName::kInt};
  const double value = word == "PI"         ? std::numbers::pi
                       : word == "INFINITY" ? std::numeric_limits<double>::infinity()
                       : word == "NAN"      ? std::numeric_limits<double>::quiet_NaN()
                                            : std::bit_cast<double>(kMissingValueBits);
  return FloatLiteral{value, TypeName::kDouble};
}

}  // namespace tesselc

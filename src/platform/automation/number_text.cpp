#include "platform/automation/number_text.h"

#if !defined(_WIN32)

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>

namespace vela::platform {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// A number in text, taken apart: digits without leading zeros, of which fraction lie after the
// point, times 10^exponent.
struct DecimalText {
  bool negative = false;
  std::string digits;
  int fraction = 0;
  int exponent = 0;
};

class NumberScanner {
 public:
  explicit NumberScanner(std::string_view text) : rest_(text) {}

  std::optional<DecimalText> Decimal() {
    DecimalText number;
    SkipSpace();
    const bool leading_sign = Sign(number.negative);
    SkipSpace();
    if (!Mantissa(number) || !Exponent(number.exponent)) return std::nullopt;
    SkipSpace();
    if (!leading_sign) Sign(number.negative);
    SkipSpace();
    if (!rest_.empty()) return std::nullopt;
    return number;
  }

  // &H and &O; nothing also for more than 64 bits.
  std::optional<std::uint64_t> Radix() {
    SkipSpace();
    if (!Take('&')) return std::nullopt;
    const bool hexadecimal = TakeLetter('h');
    if (!hexadecimal && !TakeLetter('o')) return std::nullopt;
    std::uint64_t value = 0;
    const auto [end, error] =
        std::from_chars(rest_.data(), rest_.data() + rest_.size(), value, hexadecimal ? 16 : 8);
    if (error != std::errc()) return std::nullopt;
    rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
    SkipSpace();
    if (!rest_.empty()) return std::nullopt;
    return value;
  }

 private:
  void SkipSpace() {
    while (!rest_.empty() && IsSpace(rest_.front())) rest_.remove_prefix(1);
  }
  bool Take(char c) {
    if (rest_.empty() || rest_.front() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  bool TakeLetter(char lower) { return Take(lower) || Take(static_cast<char>(lower - 'a' + 'A')); }
  bool Sign(bool& negative) {
    negative = Take('-');
    return negative || Take('+');
  }
  bool Mantissa(DecimalText& number) {
    bool any = false;
    bool point = false;
    for (; !rest_.empty(); rest_.remove_prefix(1)) {
      const char c = rest_.front();
      if (IsDigit(c)) {
        any = true;
        if (!number.digits.empty() || c != '0') number.digits += c;
        if (point) ++number.fraction;
      } else if (c == '.' && !point) {
        point = true;
      } else if (c != ',' || !any || point) {
        break;
      }
    }
    return any;
  }
  bool Exponent(int& exponent) {
    if (!TakeLetter('e') && !TakeLetter('d')) return true;
    bool negative = false;
    Sign(negative);
    if (rest_.empty() || !IsDigit(rest_.front())) return false;
    constexpr int kHuge = 100000;  // far beyond any type's range
    for (; !rest_.empty() && IsDigit(rest_.front()); rest_.remove_prefix(1)) {
      exponent = std::min(exponent * 10 + (rest_.front() - '0'), kHuge);
    }
    if (negative) exponent = -exponent;
    return true;
  }

  std::string_view rest_;
};

HRESULT ToReal(const DecimalText& text, Number& number) {
  const std::string plain = (text.digits.empty() ? "0" : text.digits) + "e" +
                            std::to_string(text.exponent - text.fraction);
  double value = 0;
  const auto error = std::from_chars(plain.data(), plain.data() + plain.size(), value).ec;
  if (error != std::errc()) {
    // Either far too large or so small that it is 0.
    const auto magnitude =
        static_cast<std::int64_t>(text.digits.size()) + text.exponent - text.fraction;
    if (magnitude > 0) return DISP_E_OVERFLOW;
    value = 0;
  }
  number = text.negative ? -value : value;
  return S_OK;
}

HRESULT ToExact(const DecimalText& text, Number& number) {
  const auto exact =
      ExactOf(text.negative, text.digits, std::int64_t{text.fraction} - text.exponent);
  if (!exact) return DISP_E_OVERFLOW;
  number = *exact;
  return S_OK;
}

}  // namespace

HRESULT ParseNumber(std::string_view text, VARTYPE type, Number& number) {
  if (const auto bits = NumberScanner(text).Radix()) {
    // As in a program text, where 32 bits spell a signed number.
    const bool narrow = *bits <= std::numeric_limits<std::uint32_t>::max();
    number = ExactOf(narrow ? std::int64_t{static_cast<std::int32_t>(*bits)}
                            : static_cast<std::int64_t>(*bits));
    return S_OK;
  }
  const auto parts = NumberScanner(text).Decimal();
  if (!parts) return DISP_E_TYPEMISMATCH;
  const bool real = type == VT_R4 || type == VT_R8 || type == VT_DATE || type == VT_BOOL;
  return real ? ToReal(*parts, number) : ToExact(*parts, number);
}

std::string FormatReal(double value, int digits) {
  char text[40];
  const char* end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits).ptr;
  std::string formatted(static_cast<const char*>(text), end);
  std::replace(formatted.begin(), formatted.end(), 'e', 'E');
  return formatted;
}

}  // namespace vela::platform

#endif

#include "platform/automation/number_text.h"

#if !defined(_WIN32)

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "platform/automation/text_scanner.h"
#include "platform/automation/value_types.h"

namespace vela::platform {
namespace {

constexpr char16_t kCurrencySign = 0xA4;

// A number in text, taken apart: digits without leading zeros, of which fraction lie after the
// point, times 10^exponent; or the bits that &H and &O spell.
struct NumberText {
  bool negative = false;
  std::string digits;
  int fraction = 0;
  int exponent = 0;
  std::optional<std::uint64_t> bits;
};

class NumberScanner {
 public:
  explicit NumberScanner(std::u16string_view text) : text_(text) {}

  // DISP_E_OVERFLOW for more than 64 bits.
  HRESULT Read(NumberText& number) {
    while (text_.TakeSpace() || Sign() || Currency() || Open()) {
    }
    HRESULT result = S_OK;
    if (text_.Take(u'&')) {
      result = Radix(number);
    } else if (!Mantissa(number) || !Exponent(number.exponent)) {
      return DISP_E_TYPEMISMATCH;
    }
    if (result == DISP_E_TYPEMISMATCH) return result;
    while (text_.TakeSpace() || (!leading_sign_ && Sign()) || Currency() || Close()) {
    }
    if (!text_.at_end() || (opened_ && !closed_)) return DISP_E_TYPEMISMATCH;
    number.negative = minus_ || opened_;
    return result;
  }

 private:
  bool Once(char16_t c, bool& seen) { return !seen && (seen = text_.Take(c)); }
  bool Sign() {
    const bool taken = Once(u'+', plus_) || Once(u'-', minus_);
    leading_sign_ |= taken && !digits_;
    return taken;
  }
  bool Currency() { return Once(kCurrencySign, currency_); }
  bool Open() { return Once(u'(', opened_); }
  bool Close() { return opened_ && Once(u')', closed_); }

  bool Mantissa(NumberText& number) {
    for (bool point = false;; text_.Skip()) {
      const char16_t c = text_.next();
      if (IsDigit(c)) {
        digits_ = true;
        if (!number.digits.empty() || c != u'0') number.digits += static_cast<char>(c);
        if (point) ++number.fraction;
      } else if (c == u'.' && !point) {
        point = true;
      } else if (c != u',' || !digits_) {
        return digits_;
      }
    }
  }

  bool Exponent(int& exponent) {
    if (!text_.TakeLetter(u'e')) return true;
    const bool negative = text_.Take(u'-');
    if (!negative) text_.Take(u'+');
    if (!IsDigit(text_.next())) return false;
    constexpr int kHuge = 100000;  // far beyond any type's range
    for (; IsDigit(text_.next()); text_.Skip()) {
      exponent = std::min(exponent * 10 + (text_.next() - u'0'), kHuge);
    }
    if (negative) exponent = -exponent;
    return true;
  }

  HRESULT Radix(NumberText& number) {
    digits_ = true;
    const bool hexadecimal = text_.TakeLetter(u'h');
    if (!hexadecimal && !text_.TakeLetter(u'o')) return DISP_E_TYPEMISMATCH;
    const std::u16string_view wide =
        text_.TakeWhile([](char16_t c) { return IsDigit(c) || IsLetter(c); });
    const std::string digits(wide.begin(), wide.end());
    std::uint64_t bits = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, bits, hexadecimal ? 16 : 8);
    if (error == std::errc::invalid_argument || stop != end) return DISP_E_TYPEMISMATCH;
    number.bits = bits;
    return error == std::errc() ? S_OK : DISP_E_OVERFLOW;
  }

  TextScanner text_;
  bool plus_ = false;
  bool minus_ = false;
  bool leading_sign_ = false;
  bool currency_ = false;
  bool opened_ = false;
  bool closed_ = false;
  bool digits_ = false;
};

HRESULT ReadReal(const NumberText& text, Number& number) {
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

HRESULT ReadExact(const NumberText& text, Number& number) {
  const auto exact =
      ExactOf(text.negative, text.digits, std::int64_t{text.fraction} - text.exponent);
  if (!exact) return DISP_E_OVERFLOW;
  number = *exact;
  return S_OK;
}

HRESULT ReadBits(std::uint64_t bits, const ValueType& type, Number& number) {
  if (type.kind == ValueKind::kDecimal) {
    number = ExactOf(bits);
    return S_OK;
  }
  const bool integer = type.kind == ValueKind::kInteger && type.type != VT_BOOL;
  const bool narrow = bits <= std::numeric_limits<std::uint32_t>::max();
  const int unused = 64 - 8 * (integer ? type.bytes : narrow ? 4 : 8);
  if (unused > 0 && bits >> (64 - unused) != 0) return DISP_E_OVERFLOW;
  const auto widened = static_cast<std::int64_t>(bits << unused) >> unused;
  number = type.is_signed ? ExactOf(widened) : ExactOf(bits);
  return S_OK;
}

}  // namespace

HRESULT ParseNumber(std::u16string_view text, VARTYPE type, Number& number) {
  const ValueType* known = FindValueType(type);
  NumberText parts;
  const HRESULT result = known == nullptr ? DISP_E_TYPEMISMATCH : NumberScanner(text).Read(parts);
  if (FAILED(result)) return result;
  if (parts.bits) return ReadBits(*parts.bits, *known, number);
  const bool real = known->kind == ValueKind::kReal || type == VT_BOOL;
  return real ? ReadReal(parts, number) : ReadExact(parts, number);
}

std::string FormatNumber(const Number& number) {
  if (const auto* exact = std::get_if<ExactNumber>(&number)) return Format(*exact);
  const double value = ToReal(number);
  if (value == 0) return "0";
  if (std::isnan(value)) return "NAN";
  const int digits = std::holds_alternative<float>(number) ? kFloatDigits : kDoubleDigits;
  char text[40];
  const char* const end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits).ptr;
  std::string formatted(static_cast<const char*>(text), end);
  std::transform(formatted.begin(), formatted.end(), formatted.begin(),
                 [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
  return formatted;
}

}  // namespace vela::platform

#endif

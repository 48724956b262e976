#include "platform/automation/variant_number.h"

#if !defined(_WIN32)

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace vela::platform {
namespace {

constexpr int kMaxScale = 28;
constexpr int kCurrencyScale = 4;
constexpr Magnitude kMaxMagnitude = (Magnitude{1} << 96) - 1;

ExactNumber FromSigned(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  return {value < 0, value < 0 ? 0 - bits : bits, 0};
}

ExactNumber FromUnsigned(std::uint64_t value) { return {false, value, 0}; }

ExactNumber FromDecimal(const DECIMAL& value) {
  return {value.sign == DECIMAL_NEG, Magnitude{value.Hi32} << 64 | value.Lo64, value.scale};
}

// value / 10^digits, rounded half to even.
Magnitude DivideByPower(Magnitude value, int digits) {
  bool sticky = false;
  unsigned last = 0;
  for (; digits > 0; --digits) {
    sticky |= last != 0;
    last = static_cast<unsigned>(value % 10);
    value /= 10;
  }
  const bool up = last > 5 || (last == 5 && (sticky || (value & 1) != 0));
  return value + (up ? 1 : 0);
}

// The number with another scale; nothing when it then needs more than 96 bits.
std::optional<Magnitude> AtScale(const ExactNumber& number, int scale) {
  Magnitude magnitude = number.magnitude;
  if (scale <= number.scale) return DivideByPower(magnitude, number.scale - scale);
  for (int i = number.scale; i < scale && magnitude != 0; ++i) {
    if (magnitude > kMaxMagnitude / 10) return std::nullopt;
    magnitude *= 10;
  }
  return magnitude;
}

double ToDouble(const ExactNumber& number) {
  // Through text: dividing by a power of ten would round twice.
  const std::string text = FormatExact(number);
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

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
  ExactNumber exact{text.negative, 0, 0};
  std::int64_t scale = std::int64_t{text.fraction} - text.exponent;
  for (std::size_t i = 0; i < text.digits.size(); ++i) {
    const auto digit = static_cast<unsigned>(text.digits[i] - '0');
    if (exact.magnitude > (kMaxMagnitude - digit) / 10) {
      // The rest does not fit: round it away when it lies after the point.
      const auto dropped = static_cast<std::int64_t>(text.digits.size() - i);
      const bool more = text.digits.find_first_not_of('0', i + 1) != std::string::npos;
      const bool up = digit > 5 || (digit == 5 && (more || (exact.magnitude & 1) != 0));
      exact.magnitude += up ? 1 : 0;
      scale -= dropped;
      if (exact.magnitude > kMaxMagnitude) return DISP_E_OVERFLOW;
      break;
    }
    exact.magnitude = exact.magnitude * 10 + digit;
  }
  if (exact.magnitude == 0) scale = 0;
  for (; scale < 0; ++scale) {
    if (exact.magnitude > kMaxMagnitude / 10) return DISP_E_OVERFLOW;
    exact.magnitude *= 10;
  }
  if (scale > kMaxScale) {
    // No more than 30 digits are there to drop.
    exact.magnitude = DivideByPower(
        exact.magnitude, static_cast<int>(std::min<std::int64_t>(scale - kMaxScale, 40)));
    scale = kMaxScale;
  }
  exact.scale = static_cast<int>(scale);
  number = exact;
  return S_OK;
}

struct IntegerType {
  int bytes;
  bool is_signed;
};

std::optional<IntegerType> AsInteger(VARTYPE type) {
  switch (type) {
    case VT_I1:
      return IntegerType{1, true};
    case VT_UI1:
      return IntegerType{1, false};
    case VT_I2:
      return IntegerType{2, true};
    case VT_UI2:
      return IntegerType{2, false};
    case VT_I4:
    case VT_INT:
      return IntegerType{4, true};
    case VT_UI4:
    case VT_UINT:
      return IntegerType{4, false};
    case VT_I8:
    case VT_CY:  // of ten-thousandths
      return IntegerType{8, true};
    case VT_UI8:
      return IntegerType{8, false};
    default:
      return std::nullopt;
  }
}

// A real number times 10^scale, rounded to an integer; nothing beyond 96 bits and for NaN.
std::optional<ExactNumber> Round(double value, int scale) {
  const double scaled = std::nearbyint(value * std::pow(10.0, scale));
  if (!(std::fabs(scaled) < 0x1p96)) return std::nullopt;
  return ExactNumber{std::signbit(scaled), static_cast<Magnitude>(std::fabs(scaled)), 0};
}

HRESULT WriteInteger(const Number& number, int scale, IntegerType type, VARIANT& value) {
  ExactNumber exact;
  if (const auto* real = std::get_if<double>(&number)) {
    const auto rounded = Round(*real, scale);
    if (!rounded) return DISP_E_OVERFLOW;
    exact = *rounded;
  } else {
    exact = std::get<ExactNumber>(number);
    const auto magnitude = AtScale(exact, scale);
    if (!magnitude) return DISP_E_OVERFLOW;
    exact.magnitude = *magnitude;
  }
  const int bits = 8 * type.bytes - (type.is_signed ? 1 : 0);
  const Magnitude limit = Magnitude{1} << bits;
  const bool fits =
      exact.negative ? exact.magnitude <= (type.is_signed ? limit : 0) : exact.magnitude < limit;
  if (!fits) return DISP_E_OVERFLOW;
  const auto unsigned_value = static_cast<std::uint64_t>(exact.magnitude);
  value.ullVal = exact.negative ? 0 - unsigned_value : unsigned_value;
  return S_OK;
}

HRESULT WriteDecimal(const Number& number, VARIANT& value) {
  ExactNumber exact;
  if (const auto* real = std::get_if<double>(&number)) {
    // As many digits as a real number is sure to hold.
    char text[32];
    const char* end =
        std::to_chars(text, text + sizeof text, *real, std::chars_format::scientific, 14).ptr;
    Number parsed;
    if (!std::isfinite(*real) || FAILED(ParseNumber({text, end}, false, parsed))) {
      return DISP_E_OVERFLOW;
    }
    exact = std::get<ExactNumber>(parsed);
    while (exact.scale > 0 && exact.magnitude % 10 == 0) {
      exact.magnitude /= 10;
      --exact.scale;
    }
  } else {
    exact = std::get<ExactNumber>(number);
  }
  value.decVal.scale = static_cast<BYTE>(exact.scale);
  value.decVal.sign = exact.negative ? DECIMAL_NEG : 0;
  value.decVal.Hi32 = static_cast<ULONG>(exact.magnitude >> 64);
  value.decVal.Lo64 = static_cast<ULONGLONG>(exact.magnitude);
  value.vt = VT_DECIMAL;
  return S_OK;
}

double AsReal(const Number& number) {
  const auto* exact = std::get_if<ExactNumber>(&number);
  return exact != nullptr ? ToDouble(*exact) : std::get<double>(number);
}

HRESULT WriteReal(double real, VARTYPE type, VARIANT& value) {
  if (type != VT_R4) {
    value.dblVal = real;
    return S_OK;
  }
  if (std::isfinite(real) && std::fabs(real) > std::numeric_limits<float>::max()) {
    return DISP_E_OVERFLOW;
  }
  value.fltVal = static_cast<float>(real);
  return S_OK;
}

}  // namespace

HRESULT ReadNumber(const VARIANT& value, Number& number) {
  switch (value.vt) {
    case VT_EMPTY:
      number = ExactNumber{};
      return S_OK;
    case VT_I1:
      number = FromSigned(static_cast<signed char>(value.cVal));
      return S_OK;
    case VT_UI1:
      number = FromUnsigned(value.bVal);
      return S_OK;
    case VT_I2:
      number = FromSigned(value.iVal);
      return S_OK;
    case VT_BOOL:
      number = FromSigned(value.boolVal == VARIANT_FALSE ? 0 : -1);
      return S_OK;
    case VT_UI2:
      number = FromUnsigned(value.uiVal);
      return S_OK;
    case VT_I4:
    case VT_INT:
      number = FromSigned(value.lVal);
      return S_OK;
    case VT_UI4:
    case VT_UINT:
      number = FromUnsigned(value.ulVal);
      return S_OK;
    case VT_I8:
      number = FromSigned(value.llVal);
      return S_OK;
    case VT_UI8:
      number = FromUnsigned(value.ullVal);
      return S_OK;
    case VT_CY: {
      ExactNumber exact = FromSigned(value.cyVal.int64);
      exact.scale = kCurrencyScale;
      number = exact;
      return S_OK;
    }
    case VT_DECIMAL:
      if (value.decVal.scale > kMaxScale) return E_INVALIDARG;
      number = FromDecimal(value.decVal);
      return S_OK;
    case VT_R4:
      number = static_cast<double>(value.fltVal);
      return S_OK;
    case VT_R8:
    case VT_DATE:
      number = value.dblVal;
      return S_OK;
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

HRESULT ParseNumber(std::string_view text, bool real, Number& number) {
  if (const auto bits = NumberScanner(text).Radix()) {
    // As in a program text, where 32 bits spell a signed number.
    const bool narrow = *bits <= std::numeric_limits<std::uint32_t>::max();
    number =
        FromSigned(narrow ? static_cast<std::int32_t>(*bits) : static_cast<std::int64_t>(*bits));
    return S_OK;
  }
  const auto parts = NumberScanner(text).Decimal();
  if (!parts) return DISP_E_TYPEMISMATCH;
  return real ? ToReal(*parts, number) : ToExact(*parts, number);
}

HRESULT WriteNumber(const Number& number, VARTYPE type, VARIANT& value) {
  VARIANT written = {};
  HRESULT result = DISP_E_TYPEMISMATCH;
  if (const auto integer = AsInteger(type)) {
    result = WriteInteger(number, type == VT_CY ? kCurrencyScale : 0, *integer, written);
  } else if (type == VT_R4 || type == VT_R8 || type == VT_DATE) {
    result = WriteReal(AsReal(number), type, written);
  } else if (type == VT_DECIMAL) {
    result = WriteDecimal(number, written);
  } else if (type == VT_BOOL) {
    const auto* exact = std::get_if<ExactNumber>(&number);
    const bool truth = exact != nullptr ? exact->magnitude != 0 : std::get<double>(number) != 0;
    written.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
    result = S_OK;
  }
  if (FAILED(result)) return result;
  written.vt = type;
  value = written;
  return S_OK;
}

std::string FormatExact(const ExactNumber& number) {
  std::string digits;
  for (Magnitude rest = number.magnitude; rest != 0; rest /= 10) {
    digits += static_cast<char>('0' + static_cast<int>(rest % 10));
  }
  const auto scale = static_cast<std::size_t>(number.scale);
  while (digits.size() <= scale) digits += '0';
  std::reverse(digits.begin(), digits.end());
  if (scale > 0) {
    digits.insert(digits.size() - scale, 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
  }
  return number.negative && number.magnitude != 0 ? "-" + digits : digits;
}

}  // namespace vela::platform

#endif

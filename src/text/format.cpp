#include "text/format.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <stdexcept>

namespace vela::text {
namespace {

using Slot = CTCExternalCallBuilder::Slot;
using SlotKind = CTCExternalCallBuilder::SlotKind;

[[noreturn]] void Refuse(const char* why) { throw std::invalid_argument(why); }

// One conversion of the format.
struct Conversion {
  bool left = false;
  bool plus = false;
  bool space = false;
  bool alternate = false;
  bool zero = false;
  int width = 0;
  int precision = -1;  // none given
  int bits = 32;       // of an integer
  bool wide_text = false;
  char letter = 0;

  bool IsUpper() const { return letter >= 'A' && letter <= 'Z'; }
};

bool IsInteger(const Slot& slot) {
  return slot.kind == SlotKind::kInteger || slot.kind == SlotKind::kUnsigned;
}

// The low bits of an integer argument as C would pass them for a conversion of so many bits.
std::int64_t IntegerOf(const Slot& slot, int bits) {
  if (!IsInteger(slot)) Refuse("an integer is expected");
  if (bits == 64) return slot.integer;
  const bool fits = slot.integer >= std::numeric_limits<std::int32_t>::min() &&
                    slot.integer <= std::int64_t{std::numeric_limits<std::uint32_t>::max()};
  if (!fits) Refuse("the integer is too wide");
  return slot.integer;
}

std::int64_t SignExtended(std::int64_t value, int bits) {
  switch (bits) {
    case 8:
      return static_cast<std::int8_t>(value);
    case 16:
      return static_cast<std::int16_t>(value);
    case 32:
      return static_cast<std::int32_t>(value);
    default:
      return value;
  }
}

std::uint64_t Truncated(std::int64_t value, int bits) {
  const auto unsigned_value = static_cast<std::uint64_t>(value);
  return bits == 64 ? unsigned_value : unsigned_value & ((std::uint64_t{1} << bits) - 1);
}

void MakeUpper(std::span<char> text) {
  for (char& ch : text) {
    if (ch >= 'a' && ch <= 'z') ch = static_cast<char>(ch - 'a' + 'A');
  }
}

class Formatter {
 public:
  Formatter(std::string_view format, std::span<const Slot> arguments)
      : rest_(format), arguments_(arguments) {
    constexpr std::size_t kUsualGrowth = 64;
    out_.reserve(format.size() + kUsualGrowth);
  }

  std::string Run() {
    for (;;) {
      const std::size_t percent = rest_.find('%');
      out_.append(rest_.substr(0, percent));
      if (percent == std::string_view::npos) return std::move(out_);
      rest_.remove_prefix(percent + 1);
      const Conversion conversion = ReadConversion();
      Convert(conversion);
    }
  }

 private:
  char Peek() const {
    if (rest_.empty()) Refuse("the format ends inside a conversion");
    return rest_.front();
  }
  bool Take(std::string_view prefix) {
    if (!rest_.starts_with(prefix)) return false;
    rest_.remove_prefix(prefix.size());
    return true;
  }
  const Slot& NextArgument() {
    if (next_ == arguments_.size()) Refuse("an argument is missing");
    return arguments_[next_++];
  }

  Conversion ReadConversion() {
    Conversion c;
    while (ReadFlag(c)) {
    }
    c.width = ReadSize();
    if (c.width < 0) {
      c.left = true;
      c.width = -c.width;
    }
    if (Take(".")) c.precision = std::max(ReadSize(), -1);
    ReadLength(c);
    c.letter = Peek();
    rest_.remove_prefix(1);
    return c;
  }

  bool ReadFlag(Conversion& c) {
    switch (Peek()) {
      case '-':
        c.left = true;
        break;
      case '+':
        c.plus = true;
        break;
      case ' ':
        c.space = true;
        break;
      case '#':
        c.alternate = true;
        break;
      case '0':
        c.zero = true;
        break;
      default:
        return false;
    }
    rest_.remove_prefix(1);
    return true;
  }

  // A width or precision: digits, or an argument; 0 when there is neither.
  int ReadSize() {
    std::int64_t size = 0;
    if (Take("*")) {
      size = IntegerOf(NextArgument(), 32);
    } else {
      for (; Peek() >= '0' && Peek() <= '9'; rest_.remove_prefix(1)) {
        size = std::min<std::int64_t>(size * 10 + (Peek() - '0'), kMostFormatSize + 1);
      }
    }
    if (size > kMostFormatSize || size < -kMostFormatSize) Refuse("the size is too large");
    return static_cast<int>(size);
  }

  void ReadLength(Conversion& c) {
    switch (Peek()) {
      case 'h':
        rest_.remove_prefix(1);
        c.bits = Take("h") ? 8 : 16;
        break;
      case 'l':
        rest_.remove_prefix(1);
        if (Take("l")) {
          c.bits = 64;
        } else {
          c.wide_text = true;
        }
        break;
      case 'I':
        if (Take("I64")) {
          c.bits = 64;
        } else {
          Take("I32");
        }
        break;
      case 'j':
      case 'z':
      case 't':
        rest_.remove_prefix(1);
        c.bits = 64;
        break;
      case 'L':
        rest_.remove_prefix(1);
        break;
      default:
        break;
    }
  }

  void Convert(const Conversion& c) {
    switch (c.letter) {
      case '%':
        out_ += '%';
        break;
      case 'd':
      case 'i':
        AppendSigned(c);
        break;
      case 'u':
        AppendUnsigned(c, 10);
        break;
      case 'o':
        AppendUnsigned(c, 8);
        break;
      case 'x':
      case 'X':
        AppendUnsigned(c, 16);
        break;
      case 'c':
        AppendCharacter(c);
        break;
      case 's':
        AppendText(c);
        break;
      case 'p':
        AppendPointer(c);
        break;
      case 'a':
      case 'A':
      case 'e':
      case 'E':
      case 'f':
      case 'F':
      case 'g':
      case 'G':
        AppendReal(c);
        break;
      default:
        Refuse("unknown conversion");
    }
  }

  static std::string_view SignOf(const Conversion& c, bool is_negative) {
    return is_negative ? "-" : c.plus ? "+" : c.space ? " " : "";
  }

  void AppendSigned(const Conversion& c) {
    const std::int64_t value = SignExtended(IntegerOf(NextArgument(), c.bits), c.bits);
    // Negated as unsigned: the smallest value has no positive counterpart.
    const auto magnitude = static_cast<std::uint64_t>(value);
    AppendInteger(c, SignOf(c, value < 0), value < 0 ? 0 - magnitude : magnitude, 10);
  }

  void AppendUnsigned(const Conversion& c, int base) {
    const std::uint64_t value = Truncated(IntegerOf(NextArgument(), c.bits), c.bits);
    const bool has_prefix = c.alternate && base == 16 && value != 0;
    AppendInteger(c, !has_prefix ? "" : c.IsUpper() ? "0X" : "0x", value, base);
  }

  void AppendInteger(const Conversion& c, std::string_view prefix, std::uint64_t value, int base) {
    char buffer[32];
    char* end = std::to_chars(buffer, buffer + sizeof buffer, value, base).ptr;
    if (c.precision == 0 && value == 0) end = buffer;
    if (c.IsUpper()) MakeUpper({buffer, end});
    const std::string_view digits(buffer, static_cast<std::size_t>(end - buffer));
    int zeros = c.precision - static_cast<int>(digits.size());
    if (c.alternate && base == 8 && zeros <= 0 && !digits.starts_with('0')) zeros = 1;
    AppendNumber(c, prefix, std::max(zeros, 0), digits, c.zero && c.precision < 0);
  }

  void AppendReal(const Conversion& c) {
    const Slot& slot = NextArgument();
    if (slot.kind != SlotKind::kDouble) Refuse("a real number is expected");
    const double magnitude = std::fabs(slot.real);
    const bool is_finite = std::isfinite(magnitude);
    std::string& digits = scratch_;
    if (is_finite) {
      WriteReal(c, magnitude, digits);
    } else {
      digits = std::isnan(magnitude) ? "nan" : "inf";
    }
    if (c.IsUpper()) MakeUpper(digits);
    std::string_view prefix = SignOf(c, std::signbit(slot.real) && !std::isnan(slot.real));
    std::string hex_prefix;
    if (is_finite && (c.letter | 0x20) == 'a') {
      prefix = hex_prefix.append(prefix).append(c.IsUpper() ? "0X" : "0x");
    }
    AppendNumber(c, prefix, 0, digits, c.zero && is_finite);
  }

  static void WriteReal(const Conversion& c, double value, std::string& digits) {
    const int precision = c.precision < 0 ? 6 : c.precision;
    switch (c.letter | 0x20) {
      case 'a':
        WriteChars(value, std::chars_format::hex, c.precision, digits);
        break;
      case 'e':
        WriteChars(value, std::chars_format::scientific, precision, digits);
        break;
      case 'f':
        WriteChars(value, std::chars_format::fixed, precision, digits);
        break;
      default:
        if (!c.alternate) {
          WriteChars(value, std::chars_format::general, precision, digits);
          return;
        }
        WriteGeneralWithZeros(value, std::max(precision, 1), digits);
    }
    if (c.alternate) EnsurePoint(digits);
  }

  // The general form with its trailing zeros: the form that %g chooses, by the exponent after
  // rounding.
  static void WriteGeneralWithZeros(double value, int significant, std::string& digits) {
    WriteChars(value, std::chars_format::scientific, significant - 1, digits);
    int exponent = 0;
    const char* first = digits.data() + digits.find('e') + 1;
    if (*first == '+') ++first;
    std::from_chars(first, digits.data() + digits.size(), exponent);
    if (exponent >= -4 && exponent < significant) {
      WriteChars(value, std::chars_format::fixed, significant - 1 - exponent, digits);
    }
  }

  static void EnsurePoint(std::string& digits) {
    if (digits.find('.') != std::string::npos) return;
    digits.insert(std::min(digits.find_first_of("ep"), digits.size()), 1, '.');
  }

  // A negative precision is as many digits as the value needs.
  static void WriteChars(double value, std::chars_format form, int precision, std::string& digits) {
    constexpr int kMostWithoutFraction = 320;
    constexpr int kUsualPrecision = 64;
    char usual[kMostWithoutFraction + kUsualPrecision];
    if (precision <= kUsualPrecision) {
      digits.assign(usual, WriteChars(usual, usual + sizeof usual, value, form, precision));
      return;
    }
    digits.resize(kMostWithoutFraction + static_cast<std::size_t>(precision));
    char* const begin = digits.data();
    const char* end = WriteChars(begin, begin + digits.size(), value, form, precision);
    digits.resize(static_cast<std::size_t>(end - begin));
  }

  static char* WriteChars(char* begin, char* end, double value, std::chars_format form,
                          int precision) {
    return (precision < 0 ? std::to_chars(begin, end, value, form)
                          : std::to_chars(begin, end, value, form, precision))
        .ptr;
  }

  // Sign or prefix, zeros and digits in the field's width.
  void AppendNumber(const Conversion& c, std::string_view prefix, int zeros,
                    std::string_view digits, bool pad_with_zeros) {
    const std::size_t size = prefix.size() + static_cast<std::size_t>(zeros) + digits.size();
    const std::size_t width = static_cast<std::size_t>(c.width);
    if (out_.size() + std::max(width, size) > std::size_t{CStringUTF8::kMostBytes}) {
      throw std::length_error("text is too long");
    }
    if (width <= size && zeros == 0) {
      out_.append(prefix).append(digits);
      return;
    }
    const std::size_t padding = width > size ? width - size : 0;
    const bool zero_padding = pad_with_zeros && !c.left;
    if (!c.left && !zero_padding) out_.append(padding, ' ');
    out_.append(prefix);
    out_.append(static_cast<std::size_t>(zeros) + (zero_padding ? padding : 0), '0');
    out_.append(digits);
    if (c.left) out_.append(padding, ' ');
  }

  void AppendPadded(const Conversion& c, std::string_view text) {
    AppendNumber(c, {}, 0, text, false);
  }

  void AppendCharacter(const Conversion& c) {
    if (c.wide_text) Refuse("no wide characters");
    const char ch = static_cast<char>(IntegerOf(NextArgument(), 32));
    AppendPadded(c, {&ch, 1});
  }

  void AppendText(const Conversion& c) {
    const Slot& slot = NextArgument();
    if (slot.kind != SlotKind::kText || c.wide_text) Refuse("a text is expected");
    std::size_t size = 0;
    if (c.precision < 0) {
      size = std::strlen(slot.text);
    } else {
      const auto most = static_cast<std::size_t>(c.precision);
      while (size < most && slot.text[size] != '\0') ++size;
    }
    AppendPadded(c, {slot.text, size});
  }

  void AppendPointer(const Conversion& c) {
    const Slot& slot = NextArgument();
    if (slot.kind != SlotKind::kPointer && slot.kind != SlotKind::kText) {
      Refuse("a pointer is expected");
    }
    char buffer[2 + 16] = {'0', 'x'};
    const auto address = reinterpret_cast<std::uintptr_t>(slot.pointer);
    const char* end = std::to_chars(buffer + 2, buffer + sizeof buffer, address, 16).ptr;
    AppendPadded(c, {buffer, static_cast<std::size_t>(end - buffer)});
  }

  std::string_view rest_;
  std::span<const Slot> arguments_;
  std::size_t next_ = 0;
  std::string out_;
  std::string scratch_;
};

}  // namespace

std::string Format(std::string_view format, std::span<const Slot> arguments) {
  return Formatter(format, arguments).Run();
}

}  // namespace vela::text

#include "platform/automation/exact_number.h"

#if !defined(_WIN32)

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <charconv>

namespace vela::platform {
namespace {

// Holds the product of two magnitudes, and a magnitude times 10^28.
using Wide = boost::multiprecision::uint256_t;

Wide PowerOfTen(int exponent) {
  return boost::multiprecision::pow(Wide(10), static_cast<unsigned>(exponent));
}

// value / 10^digits, rounded half to even.
Wide DropDigits(const Wide& value, int digits) {
  if (digits == 0) return value;
  const Wide power = PowerOfTen(digits);
  Wide quotient;
  Wide rest;
  boost::multiprecision::divide_qr(value, power, quotient, rest);
  const Wide twice = rest * 2;
  if (twice > power || (twice == power && (quotient & 1) != 0)) ++quotient;
  return quotient;
}

// (-1)^negative * value / 10^scale, of which just so many digits are dropped that it fits.
std::optional<ExactNumber> Fit(bool negative, const Wide& value, int scale) {
  const Wide most(kMaxMagnitude);
  for (int digits = std::max(scale - kMaxScale, 0); digits <= scale; ++digits) {
    const Wide rounded = DropDigits(value, digits);
    if (rounded <= most) {
      return ExactNumber{negative, static_cast<Magnitude>(rounded), scale - digits};
    }
  }
  return std::nullopt;
}

Wide Scaled(const ExactNumber& number, int scale) {
  return Wide(number.magnitude) * PowerOfTen(scale - number.scale);
}

}  // namespace

ExactNumber ExactOf(std::int64_t value, int scale) {
  const auto bits = static_cast<std::uint64_t>(value);
  return {value < 0, value < 0 ? 0 - bits : bits, scale};
}

ExactNumber ExactOf(std::uint64_t value) { return {false, value, 0}; }

ExactNumber ExactOf(const DECIMAL& value) {
  return {value.sign != 0, Magnitude{value.Hi32} << 64 | value.Lo64, value.scale};
}

std::optional<ExactNumber> ExactOf(bool negative, std::string_view digits, std::int64_t scale) {
  digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
  if (digits.empty()) return ExactNumber{negative, 0, 0};
  constexpr int kMostDigits = 29;
  if (static_cast<std::int64_t>(digits.size()) - scale > kMostDigits) return std::nullopt;
  // More digits than any result has; of those behind them it only matters whether they are all 0.
  constexpr std::size_t kKept = 60;
  Wide value = 0;
  for (const char digit : digits.substr(0, kKept)) value = value * 10 + (digit - '0');
  if (digits.size() > kKept) {
    scale -= static_cast<std::int64_t>(digits.size() - kKept) - 1;
    const bool more = digits.find_first_not_of('0', kKept) != std::string_view::npos;
    value = value * 10 + (more ? 1 : 0);
  }
  if (scale > kMaxScale + static_cast<std::int64_t>(kKept) + 1) return ExactNumber{negative, 0, 0};
  if (scale < 0) value *= PowerOfTen(static_cast<int>(-scale));
  return Fit(negative, value, static_cast<int>(std::max<std::int64_t>(scale, 0)));
}

void Store(const ExactNumber& number, DECIMAL& value) {
  value.scale = static_cast<BYTE>(number.scale);
  value.sign = number.negative ? DECIMAL_NEG : 0;
  value.Hi32 = static_cast<ULONG>(number.magnitude >> 64);
  value.Lo64 = static_cast<ULONGLONG>(number.magnitude);
}

std::optional<ExactNumber> Add(const ExactNumber& left, const ExactNumber& right) {
  const int scale = std::max(left.scale, right.scale);
  const Wide a = Scaled(left, scale);
  const Wide b = Scaled(right, scale);
  if (left.negative == right.negative) return Fit(left.negative, a + b, scale);
  return a > b ? Fit(left.negative, a - b, scale) : Fit(right.negative, b - a, scale);
}

std::optional<ExactNumber> Multiply(const ExactNumber& left, const ExactNumber& right) {
  return Fit(left.negative != right.negative, Wide(left.magnitude) * Wide(right.magnitude),
             left.scale + right.scale);
}

std::optional<ExactNumber> Divide(const ExactNumber& left, const ExactNumber& right) {
  const bool negative = left.negative != right.negative;
  Magnitude quotient = left.magnitude / right.magnitude;
  Magnitude rest = left.magnitude % right.magnitude;
  int scale = left.scale - right.scale;
  // Digit by digit: as many as the point needs, and further while there is a rest to divide.
  while (scale < 0 || (rest != 0 && scale < kMaxScale && quotient <= kMaxMagnitude / 10)) {
    if (quotient > kMaxMagnitude / 10) return std::nullopt;
    rest *= 10;
    quotient = quotient * 10 + rest / right.magnitude;
    rest %= right.magnitude;
    ++scale;
    if (quotient > kMaxMagnitude && scale > 0) {
      // One digit too many: let it decide, with the rest, how the others round.
      const auto last = static_cast<unsigned>(quotient % 10);
      quotient /= 10;
      const bool up = last > 5 || (last == 5 && (rest != 0 || (quotient & 1) != 0));
      return ExactNumber{negative, quotient + (up ? 1 : 0), scale - 1};
    }
  }
  const Magnitude twice = rest * 2;
  if (twice > right.magnitude || (twice == right.magnitude && (quotient & 1) != 0)) ++quotient;
  return Fit(negative, Wide(quotient), scale);
}

ExactNumber Negate(ExactNumber number) {
  number.negative = !number.negative;
  return number;
}

int Compare(const ExactNumber& left, const ExactNumber& right) {
  const int scale = std::max(left.scale, right.scale);
  const Wide a = Scaled(left, scale);
  const Wide b = Scaled(right, scale);
  if (a == 0 && b == 0) return 0;
  if (left.negative != right.negative) return left.negative ? -1 : 1;
  const int order = a.compare(b);
  return left.negative ? -order : order;
}

std::optional<Magnitude> AtScale(const ExactNumber& number, int scale) {
  const Wide value = scale >= number.scale ? Scaled(number, scale)
                                           : DropDigits(number.magnitude, number.scale - scale);
  if (value > Wide(kMaxMagnitude)) return std::nullopt;
  return static_cast<Magnitude>(value);
}

double ToReal(const ExactNumber& number) {
  // Through text: dividing by a power of ten would round twice.
  const std::string text = Format(number);
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

std::string Format(const ExactNumber& number) {
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

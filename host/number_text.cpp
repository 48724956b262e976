#include "host/number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fast_float/fast_float.h>
#include <limits>
#include <system_error>

#include "frame/interface/missing_value.h"

namespace vela::host {
namespace {

constexpr int kRealDigits = 16;

char* Write(std::string_view text, char* buffer) { return std::ranges::copy(text, buffer).out; }

// The C libraries disagree on the sign of a NaN.
char* WriteNan(char* buffer) { return Write("nan", buffer); }

bool IsSpace(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsSpace(text.back())) text.remove_suffix(1);
  return text;
}

bool IsDigit(char ch) { return ch >= '0' && ch <= '9'; }
bool IsSign(char ch) { return ch == '+' || ch == '-'; }

bool TakeHexPrefix(std::string_view& text) {
  const bool is_hex = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
  if (is_hex) text.remove_prefix(2);
  return is_hex;
}

int HexDigit(char ch) {
  if (IsDigit(ch)) return ch - '0';
  const char lower = static_cast<char>(ch | 0x20);
  return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Digits only: a hexadecimal fraction or exponent is not a number here.
double ReadHex(std::string_view digits) {
  for (const char ch : digits) {
    if (HexDigit(ch) < 0) return kMissingValue;
  }
  double value = 0;
  const auto [end, error] =
      std::from_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::hex);
  return error == std::errc::result_out_of_range ? std::numeric_limits<double>::infinity() : value;
}

double ReadDecimal(std::string_view text) {
  // Words such as "inf" and "nan" are no numbers.
  if (!IsDigit(text.front()) && text.front() != '.') return kMissingValue;
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto result = fast_float::from_chars(text.data(), end, value);
  // Out of range still gives the infinity or zero that it rounds to.
  const bool is_number = result.ec == std::errc() || result.ec == std::errc::result_out_of_range;
  return is_number && result.ptr == end ? value : kMissingValue;
}

}  // namespace

char* WriteGeneral(double value, int digits, char* buffer) {
  if (std::isnan(value)) return WriteNan(buffer);
  return std::to_chars(buffer, buffer + kNumberTextSize, value, std::chars_format::general, digits)
      .ptr;
}

char* WriteFixed(double value, char* buffer) {
  if (std::isnan(value)) return WriteNan(buffer);
  return std::to_chars(buffer, buffer + kFixedTextSize, value, std::chars_format::fixed, 6).ptr;
}

char* WriteReal(double value, char* buffer) {
  return value == kMissingValue ? Write(kMissingText, buffer)
                                : WriteGeneral(value, kRealDigits, buffer);
}

double ReadNumber(std::string_view text) {
  text = Trim(text);
  std::string_view magnitude = text;
  const bool has_sign = !text.empty() && IsSign(text.front());
  if (has_sign) magnitude.remove_prefix(1);
  if (magnitude.empty() || IsSign(magnitude.front())) return kMissingValue;

  const double value = TakeHexPrefix(magnitude) ? ReadHex(magnitude) : ReadDecimal(magnitude);
  const bool is_negative = has_sign && text.front() == '-';
  return is_negative && value != kMissingValue ? -value : value;
}

}  // namespace vela::host

#include "host/data/number_cell.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <fast_float/fast_float.h>
#include <system_error>
#include <type_traits>

#include "frame/interface/missing_value.h"
#include "host/data/number_types.h"
#include "host/number_text.h"
#include "host/saturate.h"

namespace vela::host {
namespace {

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kSpaces = " \t\r\n\v\f";
  const std::size_t begin = text.find_first_not_of(kSpaces);
  if (begin == text.npos) return {};
  return text.substr(begin, text.find_last_not_of(kSpaces) - begin + 1);
}

template <class T>
char* WriteNumber(T value, char* buffer) {
  return std::to_chars(buffer, buffer + kCellTextSize, value).ptr;
}
char* WriteNumber(char value, char* buffer) { return WriteNumber(int{value}, buffer); }
char* WriteNumber(unsigned char value, char* buffer) { return WriteNumber(int{value}, buffer); }
// A NaN has no sign here.
char* WriteNumber(float value, char* buffer) {
  return WriteNumber<float>(std::isnan(value) ? std::fabs(value) : value, buffer);
}
char* WriteNumber(double value, char* buffer) { return WriteNumberCell(value, buffer); }

// A part that is missing shows as such, beside a part that is not.
char* WritePart(double value, char* buffer) {
  if (value != kMissingValue) return WriteNumberCell(value, buffer);
  std::memcpy(buffer, kMissingText, std::strlen(kMissingText));
  return buffer + std::strlen(kMissingText);
}

char* WriteNumber(const OneTCcomplex& value, char* buffer) {
  if (value.m_re == kMissingValue && value.m_im == kMissingValue) return buffer;
  char* end = WritePart(value.m_re, buffer);
  if (!std::signbit(value.m_im) || value.m_im == kMissingValue) *end++ = '+';
  end = WritePart(value.m_im, end);
  *end++ = 'i';
  return end;
}

// Where the imaginary part begins: at the last sign that belongs to no exponent.
std::size_t ImaginaryStart(std::string_view text) {
  for (std::size_t at = text.size(); at-- > 1;) {
    const bool is_sign = text[at] == '+' || text[at] == '-';
    const char before = text[at - 1];
    if (is_sign && before != 'e' && before != 'E') return at;
  }
  return 0;
}

}  // namespace

bool ReadNumberCell(std::string_view text, double& value) {
  const char* const end = text.data() + text.size();
  const auto plain = fast_float::from_chars(text.data(), end, value);
  if (plain.ec == std::errc() && plain.ptr == end) return true;
  text = Trim(text);
  value = kMissingValue;
  if (text.empty() || text == kMissingText) return true;
  value = ReadNumber(text);
  return value != kMissingValue;
}

bool ReadComplexCell(std::string_view text, OneTCcomplex& value) {
  text = Trim(text);
  double re = 0, im = 0;
  value = {kMissingValue, kMissingValue};
  if (text.empty() || text.back() != 'i') {
    if (!ReadNumberCell(text, re)) return false;
    if (re != kMissingValue) value = {re, 0};
    return true;
  }
  text.remove_suffix(1);
  const std::size_t start = ImaginaryStart(text);
  std::string_view imaginary = text.substr(start);
  if (imaginary.starts_with('+')) imaginary.remove_prefix(1);
  if (imaginary.empty() || !ReadNumberCell(imaginary, im)) return false;
  if (start > 0 && !ReadNumberCell(text.substr(0, start), re)) return false;
  value = {re, im};
  return true;
}

char* WriteNumberCell(double value, char* buffer) {
  if (value == kMissingValue) return buffer;
  if (std::isnan(value)) value = std::fabs(value);
  return std::to_chars(buffer, buffer + kCellTextSize, value).ptr;
}

char* WriteElementCell(unsigned type_id, const void* element, char* buffer) {
  char* end = buffer;
  VisitNumberType(type_id, [&]<class T>(std::type_identity<T>) {
    end = WriteNumber(*static_cast<const T*>(element), buffer);
  });
  return end;
}

void ReadElementCell(unsigned type_id, std::string_view text, void* element) {
  VisitNumberType(type_id, [&]<class T>(std::type_identity<T>) {
    T& value = *static_cast<T*>(element);
    if constexpr (std::is_same_v<T, OneTCcomplex>) {
      ReadComplexCell(text, value);
    } else if constexpr (std::is_integral_v<T>) {
      const double number = ReadNumber(text);
      value = number == kMissingValue ? T{0} : Saturate<T>(number);
    } else {
      value = static_cast<T>(ReadNumber(text));
    }
  });
}

}  // namespace vela::host

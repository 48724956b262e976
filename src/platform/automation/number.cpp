#include "platform/automation/number.h"

#if !defined(_WIN32)

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

#include "platform/automation/date.h"
#include "platform/automation/value_types.h"

namespace vela::platform {
namespace {

// A real number rounded to so many digits after the point; nothing beyond 96 bits and for NaN.
std::optional<ExactNumber> Round(double value, int scale) {
  if (!(std::fabs(value) < 0x1p96)) return std::nullopt;
  char text[48];
  const char* const end =
      std::to_chars(text, text + sizeof text, std::fabs(value), std::chars_format::fixed, scale)
          .ptr;
  std::string digits(static_cast<const char*>(text), end);
  std::erase(digits, '.');
  return ExactOf(std::signbit(value), digits, scale);
}

HRESULT WriteInteger(const Number& number, int scale, const ValueType& type, VARIANT& value) {
  const auto* known = std::get_if<ExactNumber>(&number);
  const auto exact = known != nullptr ? *known : Round(ToReal(number), scale);
  const auto magnitude = exact ? AtScale(*exact, scale) : std::nullopt;
  if (!magnitude) return DISP_E_OVERFLOW;
  const int bits = 8 * type.bytes - (type.is_signed ? 1 : 0);
  const Magnitude limit = Magnitude{1} << bits;
  const bool fits =
      exact->negative ? *magnitude <= (type.is_signed ? limit : 0) : *magnitude < limit;
  if (!fits) return DISP_E_OVERFLOW;
  const auto unsigned_value = static_cast<std::uint64_t>(*magnitude);
  value.ullVal = exact->negative ? 0 - unsigned_value : unsigned_value;
  return S_OK;
}

// A real number to so many significant digits.
std::optional<ExactNumber> ToExact(double value, int digits) {
  if (!std::isfinite(value)) return std::nullopt;
  char text[40];
  const char* const end = std::to_chars(text, text + sizeof text, std::fabs(value),
                                        std::chars_format::scientific, digits - 1)
                              .ptr;
  // d.ddd...e+dd
  const char* const exponent = std::find(static_cast<const char*>(text), end, 'e') + 1;
  int power = 0;
  std::from_chars(exponent + (*exponent == '+' ? 1 : 0), end, power);
  std::string all(1, text[0]);
  all.append(static_cast<const char*>(text) + 2, exponent - 1);
  all.erase(all.find_last_not_of('0') + 1);
  return ExactOf(std::signbit(value), all, static_cast<std::int64_t>(all.size()) - 1 - power);
}

HRESULT WriteDecimal(const Number& number, VARIANT& value) {
  const auto* known = std::get_if<ExactNumber>(&number);
  const int digits = std::holds_alternative<float>(number) ? kFloatDigits : kDoubleDigits;
  const auto exact = known != nullptr ? *known : ToExact(ToReal(number), digits);
  if (!exact) return DISP_E_OVERFLOW;
  Store(*exact, value.decVal);
  return S_OK;
}

HRESULT WriteReal(double real, VARTYPE type, VARIANT& value) {
  if (type == VT_R4) {
    value.fltVal = static_cast<float>(real);
    if (std::isinf(value.fltVal)) return DISP_E_OVERFLOW;
  } else {
    value.dblVal = real;
    if (type == VT_DATE && !IsDate(real)) return DISP_E_OVERFLOW;
  }
  return S_OK;
}

HRESULT WriteTruth(const Number& number, VARIANT& value) {
  const auto* exact = std::get_if<ExactNumber>(&number);
  const bool truth = exact != nullptr ? exact->magnitude != 0 : ToReal(number) != 0;
  value.boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
  return S_OK;
}

// The integer of a type in the low bytes of a value.
Number ReadInteger(const VARIANT& value, const ValueType& type) {
  const int unused = 64 - 8 * type.bytes;
  const std::uint64_t high = value.ullVal << unused;
  if (type.is_signed) return ExactOf(static_cast<std::int64_t>(high) >> unused);
  return ExactOf(high >> unused);
}

}  // namespace

HRESULT ReadNumber(const VARIANT& value, Number& number) {
  const ValueType* type = FindValueType(value.vt);
  if (type == nullptr || value.vt == VT_NULL) return DISP_E_TYPEMISMATCH;
  switch (type->kind) {
    case ValueKind::kNothing:
      number = ExactNumber{};
      return S_OK;
    case ValueKind::kInteger:
      number = ReadInteger(value, *type);
      return S_OK;
    case ValueKind::kCurrency:
      number = ExactOf(std::int64_t{value.cyVal.int64}, kCurrencyScale);
      return S_OK;
    case ValueKind::kReal:
      number = value.dblVal;
      if (value.vt == VT_R4) number = value.fltVal;
      return S_OK;
    case ValueKind::kDecimal:
      if (value.decVal.scale > kMaxScale) return E_INVALIDARG;
      number = ExactOf(value.decVal);
      return S_OK;
    default:
      return DISP_E_TYPEMISMATCH;
  }
}

HRESULT WriteNumber(const Number& number, VARTYPE type, VARIANT& value) {
  const ValueType* known = FindValueType(type);
  if (known == nullptr) return DISP_E_TYPEMISMATCH;
  VARIANT written = {};
  HRESULT result = DISP_E_TYPEMISMATCH;
  if (type == VT_BOOL) {
    result = WriteTruth(number, written);
  } else if (known->kind == ValueKind::kInteger || known->kind == ValueKind::kCurrency) {
    result = WriteInteger(number, known->kind == ValueKind::kCurrency ? kCurrencyScale : 0, *known,
                          written);
  } else if (known->kind == ValueKind::kReal) {
    result = WriteReal(ToReal(number), type, written);
  } else if (known->kind == ValueKind::kDecimal) {
    result = WriteDecimal(number, written);
  }
  if (FAILED(result)) return result;
  written.vt = type;
  value = written;
  return S_OK;
}

double ToReal(const Number& number) {
  if (const auto* exact = std::get_if<ExactNumber>(&number)) return ToReal(*exact);
  const auto* single = std::get_if<float>(&number);
  return single != nullptr ? *single : std::get<double>(number);
}

}  // namespace vela::platform

#endif

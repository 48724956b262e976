#include "platform/automation/number.h"

#if !defined(_WIN32)

#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "platform/automation/number_text.h"
#include "platform/automation/value_types.h"

namespace vela::platform {
namespace {

// A real number times 10^scale, rounded to an integer; nothing beyond 96 bits and for NaN.
std::optional<ExactNumber> Round(double value, int scale) {
  const double scaled = std::nearbyint(value * std::pow(10.0, scale));
  if (!(std::fabs(scaled) < 0x1p96)) return std::nullopt;
  return ExactNumber{std::signbit(scaled), static_cast<Magnitude>(std::fabs(scaled)), 0};
}

HRESULT WriteInteger(const Number& number, int scale, const ValueType& type, VARIANT& value) {
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
    if (!std::isfinite(*real) || FAILED(ParseNumber({text, end}, VT_DECIMAL, parsed))) {
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
  Store(exact, value.decVal);
  return S_OK;
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

HRESULT WriteTruth(const Number& number, VARIANT& value) {
  const auto* exact = std::get_if<ExactNumber>(&number);
  const bool truth = exact != nullptr ? exact->magnitude != 0 : std::get<double>(number) != 0;
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
      number = value.vt == VT_R4 ? static_cast<double>(value.fltVal) : value.dblVal;
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
  const auto* exact = std::get_if<ExactNumber>(&number);
  return exact != nullptr ? ToReal(*exact) : std::get<double>(number);
}

}  // namespace vela::platform

#endif

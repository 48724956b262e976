// What the automation types are, in one table.
#pragma once

#if !defined(_WIN32)

#include <cstdint>

#include "platform/automation.h"

namespace vela::platform {

enum class ValueKind : std::uint8_t {
  kNothing,   // VT_EMPTY, VT_NULL
  kInteger,   // VT_BOOL among them
  kCurrency,  // an integer of ten-thousandths
  kReal,      // VT_DATE among them
  kDecimal,
  kText,
  kObject,
  kOther,
};

struct ValueType {
  VARTYPE type;
  ValueKind kind;
  // Of a value, and of an element of an array; 0 for a type that no array holds.
  std::uint8_t bytes;
  bool is_signed = false;
};

inline constexpr ValueType kValueTypes[] = {
    {VT_EMPTY, ValueKind::kNothing, 0},
    {VT_NULL, ValueKind::kNothing, 0},
    {VT_I1, ValueKind::kInteger, 1, true},
    {VT_UI1, ValueKind::kInteger, 1},
    {VT_I2, ValueKind::kInteger, 2, true},
    {VT_UI2, ValueKind::kInteger, 2},
    {VT_BOOL, ValueKind::kInteger, 2, true},
    {VT_I4, ValueKind::kInteger, 4, true},
    {VT_UI4, ValueKind::kInteger, 4},
    {VT_INT, ValueKind::kInteger, 4, true},
    {VT_UINT, ValueKind::kInteger, 4},
    {VT_I8, ValueKind::kInteger, 8, true},
    {VT_UI8, ValueKind::kInteger, 8},
    {VT_R4, ValueKind::kReal, 4, true},
    {VT_R8, ValueKind::kReal, 8, true},
    {VT_DATE, ValueKind::kReal, 8, true},
    {VT_CY, ValueKind::kCurrency, 8, true},
    {VT_DECIMAL, ValueKind::kDecimal, sizeof(DECIMAL), true},
    {VT_BSTR, ValueKind::kText, sizeof(BSTR)},
    {VT_DISPATCH, ValueKind::kObject, sizeof(IDispatch*)},
    {VT_UNKNOWN, ValueKind::kObject, sizeof(IUnknown*)},
    {VT_ERROR, ValueKind::kOther, sizeof(SCODE)},
    {VT_VARIANT, ValueKind::kOther, sizeof(VARIANT)},
    // Only arrays hold these two.
    {VT_INT_PTR, ValueKind::kOther, sizeof(void*)},
    {VT_UINT_PTR, ValueKind::kOther, sizeof(void*)},
};

// Null for a type that is not in the table, modified types (VT_ARRAY, VT_BYREF) among them.
constexpr const ValueType* FindValueType(VARTYPE type) {
  for (const ValueType& known : kValueTypes) {
    if (known.type == type) return &known;
  }
  return nullptr;
}

// Whether a VARIANT may be of the type.
constexpr bool IsVariantType(VARTYPE type) {
  const VARTYPE base = type & VT_TYPEMASK;
  if (type & (VT_VECTOR | VT_RESERVED)) return false;
  if ((type & (VT_ARRAY | VT_BYREF)) && base <= VT_NULL) return false;
  return base != 15 && (base < VT_VOID || base == VT_RECORD);
}

}  // namespace vela::platform

#endif

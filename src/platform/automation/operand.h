// Operands of arithmetic and comparison.
#pragma once

#if !defined(_WIN32)

#include "platform/automation/convert.h"

namespace vela::platform {

// Numeric types in the order in which one of two operands decides the type of both.
enum class Rank {
  kNone,   // not an operand
  kOther,  // integers that only division takes
  kEmpty,
  kByte,
  kShort,  // VT_I2 and VT_BOOL
  kLong,
  kHuge,
  kSingle,
  kDouble,
  kText,  // a number in text is a double
  kCurrency,
  kDate,
  kDecimal,
  kNull,
};

Rank RankOf(VARTYPE type);

// A value as an operand of arithmetic: the default property stands in for an object.
class Operand {
 public:
  // DISP_E_TYPEMISMATCH for an object without a default property.
  HRESULT Read(VARIANT* source);
  const VARIANT& value() const { return *value_; }
  Rank rank() const { return RankOf(value_->vt); }

 private:
  VARIANT* value_ = nullptr;
  OwnedValue property_;
};

}  // namespace vela::platform

#endif

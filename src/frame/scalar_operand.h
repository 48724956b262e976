// The operand of a binary operator, where it is one value.
#pragma once

#include <type_traits>

#include "frame/element_types.h"
#include "frame/element_value.h"
#include "frame/interface/object_argument.h"
#include "frame/interface/script_object.h"
#include "frame/interface/status.h"
#include "kernel/arithmetic.h"

namespace vela {

// A scalar operand as the element type. A missing operand of a float stays recognisable as NaN; a
// complex one is missing as a number when either part is.
template <class T, class U>
T OperandAs(const U& value) {
  if constexpr (FloatingElement<T> && ComplexElement<U>) {
    return OperandAs<T>(kernel::IsMissing(value.m_im) ? value.m_im : value.m_re);
  } else if constexpr (std::is_same_v<T, float> && std::is_arithmetic_v<U>) {
    return kernel::ConvertOperand<float>(value);
  } else {
    return ConvertValue<T>(value);
  }
}

// Calls f with the value of a plain operand.
template <class F>
decltype(auto) WithPlainOperand(const tagMSOOBJVECT& operand, F&& f) {
  switch (operand.type_word & kTypeIdMask) {
    case kTypeInt64:
      return f(static_cast<std::int64_t>(operand.plain_bits));
    case kTypeUnsignedInt64:
      return f(operand.plain_bits);
    default:
      return f(operand.plain);
  }
}

// A plain operand, or the scalar or element that an object operand addresses; a status.
template <class T>
int ReadScalarOperand(const tagMSOOBJVECT& operand, T& value) {
  if (operand.object == nullptr) {
    value = WithPlainOperand(operand, [](const auto& plain) { return OperandAs<T>(plain); });
    return status::kOk;
  }
  if constexpr (PointElement<T>) {
    return operand.object->GetPointValue(&operand.indices, value);
  } else if constexpr (std::is_same_v<T, float>) {
    double number = 0;
    const int error = operand.object->GetNumericValue(&operand.indices, number);
    value = OperandAs<float>(number);
    return error;
  } else {
    return operand.object->GetNumericValue(&operand.indices, value);
  }
}

}  // namespace vela

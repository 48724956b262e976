#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/interface/object_argument.h"
#include "tesselc/run/number_types.h"

namespace tesselc {

// A number or complex value as an operand of Operate2, with operation::kPlainOperand.
template <class T>
tagMSOOBJVECT PlainOperand(const T& value) {
  if constexpr (std::is_same_v<T, OneTCcomplex>) {
    return tagMSOOBJVECT::Plain(value, kTypeComplex);
  } else if constexpr (std::is_integral_v<T> && sizeof(T) == 8) {
    return tagMSOOBJVECT::Plain(value);
  } else {
    return tagMSOOBJVECT::Plain(static_cast<double>(value), kTypeIdOf<T>);
  }
}

}  // namespace tesselc

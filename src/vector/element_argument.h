// An element of a vector as an argument, and what else members ask about their arguments.
#pragma once

#include <charconv>
#include <string_view>

#include "frame/element_value.h"
#include "frame/member/arguments.h"

namespace vela {

// Whether the argument is a vector with this element type, a row of one included.
inline bool IsVectorOf(const member::Arguments& args, unsigned arg, unsigned type_id) {
  const unsigned word = args.TypeId(arg);
  return (word & kFlagAnyVector) != 0 && (word & kTypeIdMask) == type_id;
}

// A 64-bit integer argument without the rounding of a double: by its text.
template <class Integer>
Integer WholeArgument(member::Arguments& args, unsigned arg) {
  const CStringUTF8 text = args.Text(arg);
  const std::string_view digits = text.View();
  Integer value = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), value);
  return value;
}

// The argument as an element of type T. A plain number becomes a complex with that real part, and a
// point with that x where the frame converts it.
template <class T>
T ElementArgument(member::Arguments& args, unsigned arg) {
  if constexpr (ComplexElement<T>) {
    return args.Complex(arg);
  } else if constexpr (PointElement<T>) {
    T value;
    if constexpr (std::is_same_v<T, PointInt>) {
      member::Check(args.Call().GetPointInt(arg, value));
    } else if constexpr (std::is_same_v<T, PointDouble>) {
      member::Check(args.Call().GetPointDouble(arg, value));
    } else {
      member::Check(args.Call().GetPoint3D(arg, value));
    }
    return value;
  } else {
    if constexpr (IntegerElement<T> && sizeof(T) == 8) {
      const unsigned type_id = args.TypeId(arg);
      if (type_id == kTypeInt64) return ConvertValue<T>(WholeArgument<std::int64_t>(args, arg));
      if (type_id == kTypeUnsignedInt64) {
        return ConvertValue<T>(WholeArgument<std::uint64_t>(args, arg));
      }
    }
    return ConvertValue<T>(args.Double(arg));
  }
}

}  // namespace vela

// The number types of columns.
#pragma once

#include <type_traits>

#include "frame/interface/complex.h"
#include "frame/interface/type_words.h"

namespace vela::host {

// Calls f(std::type_identity<T>()) for the number type with this id; false when columns have none
// of the id. They are the element types that a Dataset can have.
template <class F>
bool VisitNumberType(unsigned type_id, F&& f) {
  const auto call = [&]<class T>(std::type_identity<T> type) {
    f(type);
    return true;
  };
  switch (type_id) {
    case kTypeChar:
      return call(std::type_identity<char>());
    case kTypeUnsignedChar:
      return call(std::type_identity<unsigned char>());
    case kTypeShort:
      return call(std::type_identity<short>());
    case kTypeUnsignedShort:
      return call(std::type_identity<unsigned short>());
    case kTypeInt:
      return call(std::type_identity<int>());
    case kTypeUnsignedInt:
      return call(std::type_identity<unsigned>());
    case kTypeFloat:
      return call(std::type_identity<float>());
    case kTypeDouble:
      return call(std::type_identity<double>());
    case kTypeComplex:
      return call(std::type_identity<OneTCcomplex>());
    default:
      return false;
  }
}

}  // namespace vela::host

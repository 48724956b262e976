#pragma once

#include "frame/interface/string_utf8.h"
#include "tesselc/run/number_types.h"
#include "tesselc/run/object_value.h"

namespace tesselc {

// What an expression node hands over: the scalar types carry themselves, kString is a CStringUTF8
// (a text that is in no object), kAny an ObjectValue, and kVoid nothing.
using Carrier = TypeName;
inline constexpr Carrier kTextCarrier = TypeName::kString;
inline constexpr Carrier kObjectCarrier = TypeName::kAny;

// Calls f(std::type_identity<T>()) for the type of a carrier that is not kVoid.
template <class F>
decltype(auto) WithCarrier(Carrier carrier, F&& f) {
  switch (carrier) {
    case kTextCarrier:
      return f(std::type_identity<CStringUTF8>());
    case kObjectCarrier:
      return f(std::type_identity<ObjectValue>());
    default:
      return WithScalar(carrier, std::forward<F>(f));
  }
}

}  // namespace tesselc

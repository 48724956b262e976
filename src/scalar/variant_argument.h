// Anything that a script can pass or combine, as an automation value.
#pragma once

#include <array>
#include <cstring>

#include "frame/element_types.h"
#include "frame/interface/automation_values.h"
#include "frame/interface/host_services.h"
#include "frame/interface/object_argument.h"
#include "frame/member/arguments.h"
#include "platform/com_variant.h"

namespace vela {

// The value in an automation type of its own: a number by its width, a complex value or point as an
// array of doubles. Throws std::bad_alloc.
template <class T>
CComVariant VariantOf(const T& value) {
  CComVariant made;
  if constexpr (ComplexElement<T>) {
    if (value.GetVariant(made) == 0) throw std::bad_alloc();
  } else if constexpr (PointElement<T>) {
    std::array<double, T::kDimensions> parts;
    for (int i = 0; i < T::kDimensions; ++i) parts[i] = static_cast<double>(value[i]);
    member::Check(VariantOfParts(parts, made));
  } else {
    made.vt = GetVariantTypeFromSimpleType(kElement<T>.type_id);
    std::memcpy(&made.llVal, &value, sizeof value);
  }
  return made;
}

// An argument of any type: status 8 for NULL, else the status of an object that has no value.
// Throws AutomationError where a variant cannot be copied.
CComVariant VariantArgument(member::Arguments& args, unsigned arg);

// The operand of an operator, an object or a plain value.
CComVariant OperandVariant(const tagMSOOBJVECT& operand);

}  // namespace vela

// The binary operators on the elements of layers.
#pragma once

#include "frame/container/element_span.h"
#include "frame/interface/object_argument.h"

namespace vela {

// x = x <code> y element by element, y being as many elements of any type, the same memory or none
// shared; the code must be an operation of x's type. On worker threads where the host enables
// parallel work. In debug mode products are guarded.
void ApplyElements(const ElementSpan& x, unsigned code, const ConstElementSpan& y);

// The operand as an element of the type; ends the handler with the operand's status when it cannot
// be read.
AnyElement OperandElement(const tagMSOOBJVECT& operand, unsigned type_id);

// x = x <code> value for every element, value being of x's type.
void ApplyValue(const ElementSpan& x, unsigned code, const ConstElementSpan& value);

// x = y, which differs from a copy in that a NaN becomes the missing value. Many elements are
// shared out over worker threads.
void AssignElements(const ConstElementSpan& y, const ElementSpan& x);

}  // namespace vela

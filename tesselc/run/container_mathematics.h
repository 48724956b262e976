// The mathematics functions on vectors and matrices, element by element.
#pragma once

#include "tesselc/run/builtins.h"
#include "tesselc/run/carrier.h"
#include "tesselc/source.h"

namespace tesselc {

// f(container) for elements of type double, float or complex (the function must know it), in the
// container itself, which is nobody else's: its value. A missing element stays missing.
NodePtr MakeMathOnContainer(const MathFunction& function, TypeName element, NodePtr container,
                            SourceRange where);

// Which operand of a function of two is the container that receives the result; the other is one of
// the same shape and element type, or a number (a double).
enum class MathTarget : bool { kFirst, kSecond };
NodePtr MakeMathOnContainers(const MathFunction& function, TypeName element, MathTarget target,
                             NodePtr container, Carrier carrier, NodePtr other, SourceRange where);

}  // namespace tesselc

// The built-in functions that do not write.
#pragma once

#include <string_view>
#include <vector>

#include "frame/interface/complex.h"
#include "tesselc/run/node.h"
#include "tesselc/source.h"

namespace tesselc {

// A function of the C mathematics library, or a test; exactly one of the pointers to functions of
// doubles is set.
struct MathFunction {
  std::string_view name;
  double (*unary)(double) = nullptr;
  double (*binary)(double, double) = nullptr;
  bool (*test)(double) = nullptr;  // its value is an int
  // The same of complex elements, where there is such a function.
  OneTCcomplex (*complex_unary)(const OneTCcomplex&) = nullptr;
};

// Every function that a script can call without defining it.
std::vector<std::string_view> BuiltinNames();
// Null when there is none of that name.
const MathFunction* FindMathFunction(std::string_view name);
NodePtr MakeMathCall(const MathFunction& function, std::vector<NodePtr> arguments);

NodePtr MakeAssert(NodePtr condition, SourceRange where);
NodePtr MakeExit(NodePtr code);
// Seconds from a monotonic clock.
NodePtr MakeClock();

}  // namespace tesselc

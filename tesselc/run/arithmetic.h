// Nodes of the operators on numbers, complex values and points.
#pragma once

#include "tesselc/run/node.h"
#include "tesselc/source.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

using PowerFunction = double (*)(double, double);

// Both operands have the type `type`, one that arithmetic is done in. Power and shifts excluded.
// Division of integers by zero is a script error at `where`.
NodePtr MakeArithmetic(BinaryOperator op, TypeName type, NodePtr left, NodePtr right,
                       SourceRange where);
// The value is an int, 0 or 1. `type` is as above, or complex; points know only == and !=.
NodePtr MakeComparison(BinaryOperator op, TypeName type, NodePtr left, NodePtr right);
// Both operands are doubles, and so is the value.
NodePtr MakePower(PowerFunction power, NodePtr left, NodePtr right);
// `type` is the promoted type of the left operand, the right one is an int64. A count below 0 or
// not below the width of the type is a script error.
NodePtr MakeShift(BinaryOperator op, TypeName type, NodePtr left, NodePtr right, SourceRange where);
// An operation code of operations.h on complex values.
NodePtr MakeComplexArithmetic(unsigned op, NodePtr left, NodePtr right, SourceRange where);
// + and - on points of one type.
NodePtr MakePointArithmetic(BinaryOperator op, TypeName type, NodePtr left, NodePtr right);

// `type` is one that arithmetic is done in, or complex.
NodePtr MakeNegate(TypeName type, NodePtr operand);
// ~ on an integer.
NodePtr MakeComplement(TypeName type, NodePtr operand);

// An int, 0 or 1: whether the number or complex value is not zero.
NodePtr MakeTruth(TypeName type, NodePtr operand);
// These take truths and give one.
NodePtr MakeNot(NodePtr operand);
NodePtr MakeAnd(NodePtr left, NodePtr right);
NodePtr MakeOr(NodePtr left, NodePtr right);

// Between scalar types that convert into each other. Integers wrap where they do not fit.
NodePtr MakeConversion(TypeName from, TypeName to, NodePtr operand);
// The same for a value that is stored in an object: integers saturate.
NodePtr MakeSaturating(TypeName from, TypeName to, NodePtr operand);
// An int64 from a double; a missing value and NaN are script errors.
NodePtr MakeIndex(NodePtr operand, SourceRange where);
// A value from its parts, each a double: a complex or a point.
NodePtr MakeFromParts(TypeName type, std::vector<NodePtr> parts);

}  // namespace tesselc

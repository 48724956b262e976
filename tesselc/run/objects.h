// Nodes that reach, create, assign and combine objects.
#pragma once

#include <string>

#include "frame/interface/operations.h"
#include "tesselc/run/carrier.h"
#include "tesselc/run/object_value.h"
#include "tesselc/source.h"

namespace tesselc {

// What the factory needs to know to make an object of a type, and the type as a script writes it.
struct ObjectType {
  unsigned type_word = 0;
  std::string name;
};

// The object in a variable. `name` is the variable's: it may be used before its declaration ran.
NodePtr MakeLoadObject(const ObjectPlace& place, std::string name, SourceRange where);
// The object whose members are the host's functions.
NodePtr MakeHostFunctions();
// A new object of `count` elements (null: a plain one) in an owning variable. The old one, if any,
// is released.
NodePtr MakeDeclareObject(const ObjectPlace& place, ObjectType type, NodePtr count,
                          SourceRange where);
// Makes a reference variable refer to an object.
NodePtr MakeBindReference(std::uint32_t offset, NodePtr object);
// The item of an array of objects, or the layer of a matrix; `index` is an int64.
NodePtr MakeArrayItem(NodePtr object, NodePtr index, SourceRange where);
// A copy that is nobody's variable, and so may be kept: of the whole object, or of the part that is
// addressed.
NodePtr MakeCopy(NodePtr object, ObjectType type, SourceRange where);
// A new object of a type holding a value: an object assigned to it, or a text or scalar.
NodePtr MakeTemporary(ObjectType type, Carrier carrier, NodePtr value, SourceRange where);

// target = source, or target op= source (an operation code of operations.h); the value is the
// target. The source is an object or a scalar.
NodePtr MakeOperate(unsigned op, NodePtr target, Carrier carrier, NodePtr source,
                    SourceRange where);
// left op right on a copy of the left operand.
NodePtr MakeOperateOnCopy(unsigned op, NodePtr left, Carrier carrier, NodePtr right,
                          SourceRange where);
// scalar op object: what a copy of the object filled with the scalar would give.
NodePtr MakeOperateOnFilled(unsigned op, Carrier scalar, NodePtr left, NodePtr right,
                            SourceRange where);
// -object, for a container: the sign of a zero changes as well, unsigned elements wrap.
NodePtr MakeNegateObject(NodePtr object, SourceRange where);
// How two objects compare; op is a comparison code of operations.h. The value is an int, 0 or 1.
NodePtr MakeCompareObjects(unsigned op, NodePtr left, NodePtr right, SourceRange where);

// The text that a string object holds, or that stands for any other.
NodePtr MakeTextOf(NodePtr object, SourceRange where);
// Sets the text of a string object; the value is the object.
NodePtr MakeSetText(NodePtr object, NodePtr text, SourceRange where);
// Appends to the text of a string object; the value is the object.
NodePtr MakeAppendText(NodePtr object, NodePtr text, SourceRange where);
// The object in a variable that is about to go, kept alive for who receives it.
NodePtr MakeKeep(NodePtr object);
// The number in an object that holds one (a _VARIANT), as a scalar type.
NodePtr MakeNumberOf(TypeName scalar, NodePtr object, SourceRange where);
// Whether such an object holds a number other than 0: an int, 0 or 1, and 0 for no number.
NodePtr MakeTruthOf(NodePtr object, SourceRange where);

// What an operation code does: "add".
const char* NameOfOperation(unsigned op);
// Throws unless the status is 0: "cannot <what>: status 28 (index or row out of range)".
void CheckStatus(int status, const char* what, const SourceRange& where);

}  // namespace tesselc

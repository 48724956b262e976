#pragma once

#include <string>
#include <vector>

#include "tesselc/run/bindings.h"
#include "tesselc/run/objects.h"

namespace tesselc {

// Everything about one use of a member that is known before the script runs.
struct MemberUse {
  BindingPtr object;
  std::string member;
  std::string owner;  // the object's type, as messages call it
  std::vector<std::string> signatures;
  std::vector<ArgumentPtr> arguments;
  SourceRange where;
  bool is_const = false;  // the object is
};

// A method call. `carrier` is that of the result; kVoid for none. For an object result,
// `result_type` says which object the member fills in.
NodePtr MakeMethodCall(MemberUse use, Carrier carrier, ObjectType result_type);
NodePtr MakePropertyGet(MemberUse use, Carrier carrier, ObjectType result_type);
// `carrier` is that of the value, which is the value of the expression as well.
NodePtr MakePropertySet(MemberUse use, Carrier carrier, NodePtr value);

// Calls a method of an object by name, without a result: for the runner's own needs.
void CallMethod(CScriptVelaObject& object, const char* name, vela::host::CallFrame& call,
                const SourceRange& where);

}  // namespace tesselc

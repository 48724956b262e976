// Functions of the script, and calls of them.
#pragma once

#include <string>
#include <vector>

#include "tesselc/run/bindings.h"
#include "tesselc/run/carrier.h"
#include "tesselc/run/objects.h"

namespace tesselc {

// Filled in by the compiler when the body has been compiled; calls compiled before that refer to it
// by address.
struct CompiledFunction {
  std::string name;
  Carrier result = TypeName::kVoid;
  std::uint32_t frame_size = 0;
  std::vector<std::uint32_t> owned_slots;  // of parameters that are objects by value
  bool is_main = false;                    // may end without a return
  NodePtr body;
};

// Puts one argument into the new frame, at the parameter's offset.
class ParameterNode {
 public:
  virtual ~ParameterNode() = default;
  // Whether Pass leaves something in `passed`; otherwise it may be given a null one.
  virtual bool UsesPassed() const { return false; }
  virtual void Pass(Frame& caller, Passed* passed, std::byte* callee) = 0;
  virtual void Complete(Frame&, Passed&) {}
};
using ParameterPtr = std::unique_ptr<ParameterNode>;

// By value: a scalar; an object, which the frame then owns and which must be nobody else's.
ParameterPtr MakeScalarParameter(TypeName type, std::uint32_t offset, NodePtr value);
ParameterPtr MakeOwnedParameter(std::uint32_t offset, NodePtr object);
// By reference: the scalar variable itself; an object; a scalar element; a text element, of which
// the function gets a copy that is put back when it has changed.
ParameterPtr MakeVariableParameter(std::uint32_t offset, const VariablePlace& place);
// A constant reference to a value: `store` puts it into the variable first.
ParameterPtr MakeStoredParameter(std::uint32_t offset, NodePtr store, const VariablePlace& place);
ParameterPtr MakeBorrowedParameter(std::uint32_t offset, NodePtr object_in_variable);
ParameterPtr MakeReferenceParameter(std::uint32_t offset, BindingPtr binding);
ParameterPtr MakeElementParameter(TypeName type, std::uint32_t offset, NodePtr element);

NodePtr MakeCall(const CompiledFunction& function, std::vector<ParameterPtr> parameters,
                 SourceRange where);

}  // namespace tesselc

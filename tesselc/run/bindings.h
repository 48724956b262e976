// How a member call gets at its object and its arguments.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "frame/interface/string_utf8.h"
#include "host/call_frame.h"
#include "tesselc/run/elements.h"
#include "tesselc/run/run.h"
#include "tesselc/run/variables.h"

namespace tesselc {

// What stays alive, and is tidied up, until one call is over.
class Passed {
 public:
  Passed() = default;
  ~Passed();
  Passed(const Passed&) = delete;
  Passed& operator=(const Passed&) = delete;

  // A scalar object that lives in `address` until this is destroyed.
  CScriptVelaObject* BindProxy(Run& run, TypeName type, void* address, const SourceRange& where);

  ObjectValue value;
  // Of an element: where it is, and what it was.
  ElementSpot spot;
  std::optional<CStringUTF8> text;
  std::unique_ptr<ElementLink> link;
  ElementLink* referred = nullptr;  // by the variable that was bound
  alignas(8) std::byte scalar[sizeof(Point3D)];
  // What was bound for the same call before.
  Passed* previous = nullptr;

 private:
  Run* run_ = nullptr;
  TypeName proxy_type_ = TypeName::kVoid;
  vela::host::ObjectRef proxy_;
};

// Finds the object that a member runs on, or that an argument passes.
class Binding {
 public:
  virtual ~Binding() = default;
  // Leaves the object in passed.value.
  virtual void Bind(Frame& frame, Passed& passed) = 0;
  // After the call succeeded: puts the copy of an element back.
  enum class Return : std::uint8_t { kAlways, kChanged };
  virtual void Complete(Passed&, Return) {}
};
using BindingPtr = std::unique_ptr<Binding>;

BindingPtr MakeObjectBinding(NodePtr object);
// A scalar variable: the call works on the variable itself.
BindingPtr MakeVariableBinding(TypeName type, const VariablePlace& place, SourceRange where);
// An element: the call works on a copy, which is put back if the element is still there. Two uses
// of one element in a call share the copy. `carrier` is a scalar type or the text.
BindingPtr MakeElementBinding(Carrier carrier, NodePtr element, SourceRange where);
// A value that is in no variable: the call works on a temporary.
BindingPtr MakeValueBinding(Carrier carrier, NodePtr value, SourceRange where);

// Puts one argument into a call frame.
class ArgumentNode {
 public:
  virtual ~ArgumentNode() = default;
  virtual void Pass(Frame& frame, Passed& passed, vela::host::CallFrame& call) = 0;
  virtual void Complete(Passed&) {}
};
using ArgumentPtr = std::unique_ptr<ArgumentNode>;

ArgumentPtr MakeNullArgument();
// By value, as a number or a text: what a literal or an expression passes. Not for points.
ArgumentPtr MakeValueArgument(Carrier carrier, NodePtr value);
// An object; by reference, the member may write to it. `is_const`: it only reads.
ArgumentPtr MakeObjectArgument(BindingPtr binding, bool by_reference, bool is_const = false);

}  // namespace tesselc

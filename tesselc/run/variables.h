// Variables of scalar types: how a node reaches one, reads it and assigns to it.
#pragma once

#include "tesselc/run/node.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

// Where a scalar variable lives: at an offset of the frame, at a fixed address (a global), or at
// the address that an offset of the frame holds (a reference).
struct VariablePlace {
  enum class Mode : std::uint8_t { kLocal, kGlobal, kReference };
  Mode mode = Mode::kLocal;
  std::uint32_t offset = 0;
  void* address = nullptr;

  static VariablePlace Local(std::uint32_t offset) { return {Mode::kLocal, offset, nullptr}; }
  static VariablePlace Global(void* address) { return {Mode::kGlobal, 0, address}; }
  static VariablePlace Reference(std::uint32_t offset) {
    return {Mode::kReference, offset, nullptr};
  }

  void* Address(Frame& frame) const {
    switch (mode) {
      case Mode::kLocal:
        return frame.base + offset;
      case Mode::kGlobal:
        return address;
      default:
        return frame.At<void*>(offset);
    }
  }
};

// The same places as types, for the nodes that are specialised by them.
struct LocalVariable {
  std::uint32_t offset;
  template <class T>
  T& Get(Frame& frame) const {
    return frame.At<T>(offset);
  }
};
struct GlobalVariable {
  void* address;
  template <class T>
  T& Get(Frame&) const {
    return *static_cast<T*>(address);
  }
};
struct ReferenceVariable {
  std::uint32_t offset;
  template <class T>
  T& Get(Frame& frame) const {
    return *frame.At<T*>(offset);
  }
};

// Calls f with the place as one of the three types above.
template <class F>
decltype(auto) WithPlace(const VariablePlace& place, F&& f) {
  switch (place.mode) {
    case VariablePlace::Mode::kLocal:
      return f(LocalVariable{place.offset});
    case VariablePlace::Mode::kGlobal:
      return f(GlobalVariable{place.address});
    default:
      return f(ReferenceVariable{place.offset});
  }
}

template <class T, class Place>
class LoadVariable final : public Expr<LoadVariable<T, Place>, T> {
 public:
  explicit LoadVariable(Place place) : place_(place) {}
  T Eval(Frame& frame) override { return place_.template Get<T>(frame); }
  const Place& place() const { return place_; }

 private:
  Place place_;
};

template <class T>
class Constant final : public Expr<Constant<T>, T> {
 public:
  explicit Constant(T value) : value_(std::move(value)) {}
  T Eval(Frame&) override { return value_; }
  const T& value() const { return value_; }

 private:
  T value_;
};

template <class T>
NodePtr MakeConstant(T value) {
  return std::make_unique<Constant<T>>(std::move(value));
}

// `type` is the variable's scalar type, and of the value assigned.
NodePtr MakeLoad(TypeName type, const VariablePlace& place);
NodePtr MakeStore(TypeName type, const VariablePlace& place, NodePtr value);
// Fills the variable with one byte value: how a new one starts.
NodePtr MakeFill(TypeName type, const VariablePlace& place, unsigned char byte);
// variable = variable op value, where the type needs no conversion; null where there is no node of
// its own for that, and the plain operators do it.
NodePtr MakeUpdate(TypeName type, const VariablePlace& place, BinaryOperator op, NodePtr& value);
// ++ and --; the value is the variable's before or after.
NodePtr MakeStep(TypeName type, const VariablePlace& place, bool up, bool give_old);

}  // namespace tesselc

// Variables of scalar types: how a node reaches one, reads it and assigns to it.
#pragma once

#include <cstdint>
#include <type_traits>

#include "tesselc/run/node.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

// An element of an object that a reference refers to. It is looked up at each use, because its
// storage moves; one that is gone by then is a ScriptError.
class ElementLink {
 public:
  virtual ~ElementLink() = default;
  virtual void Load(void* value) = 0;
  virtual void Store(const void* value) = 0;
};

// What a reference holds: the address of a variable, or an element.
struct ScalarReference {
  void* address;
  ElementLink* element;
};

// Where a scalar variable lives: at an offset of the frame, at a fixed address (a global), or where
// a ScalarReference at an offset of the frame says.
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

  ScalarReference Refer(Frame& frame) const {
    switch (mode) {
      case Mode::kLocal:
        return {frame.base + offset, nullptr};
      case Mode::kGlobal:
        return {address, nullptr};
      default:
        return frame.At<ScalarReference>(offset);
    }
  }
};

// A variable of the frame or a global, reached alike without a branch: an address is the frame's
// base, or nothing, plus a distance.
class DirectVariable {
 public:
  static DirectVariable Local(std::uint32_t offset) { return {~std::uintptr_t{0}, offset}; }
  static DirectVariable Global(void* address) {
    return {0, reinterpret_cast<std::uintptr_t>(address)};
  }

  template <class T>
  T& Get(Frame& frame) const {
    const std::uintptr_t base = reinterpret_cast<std::uintptr_t>(frame.base) & base_mask_;
    return *reinterpret_cast<T*>(base + distance_);
  }
  template <class T>
  T Load(Frame& frame) const {
    return Get<T>(frame);
  }
  template <class T>
  void Store(Frame& frame, const T& value) const {
    Get<T>(frame) = value;
  }

 private:
  DirectVariable(std::uintptr_t base_mask, std::uintptr_t distance)
      : base_mask_(base_mask), distance_(distance) {}

  std::uintptr_t base_mask_;
  std::uintptr_t distance_;
};
struct ReferenceVariable {
  std::uint32_t offset;
  template <class T>
  T Load(Frame& frame) const {
    const auto& reference = frame.At<ScalarReference>(offset);
    if (reference.element == nullptr) [[likely]]
      return *static_cast<T*>(reference.address);
    T value{};
    reference.element->Load(&value);
    return value;
  }
  template <class T>
  void Store(Frame& frame, const T& value) const {
    const auto& reference = frame.At<ScalarReference>(offset);
    if (reference.element == nullptr) [[likely]] {
      *static_cast<T*>(reference.address) = value;
    } else {
      reference.element->Store(&value);
    }
  }
};

// Calls f with the place as one of the two types above.
template <class F>
decltype(auto) WithPlace(const VariablePlace& place, F&& f) {
  switch (place.mode) {
    case VariablePlace::Mode::kLocal:
      return f(DirectVariable::Local(place.offset));
    case VariablePlace::Mode::kGlobal:
      return f(DirectVariable::Global(place.address));
    default:
      return f(ReferenceVariable{place.offset});
  }
}

// The types whose loops are worth nodes of their own.
template <class T>
inline constexpr bool kIsFastType = std::is_same_v<T, double> || std::is_same_v<T, int>;

template <class T, class Place>
class LoadVariable final : public ValueNode<T> {
 public:
  explicit LoadVariable(Place place) : place_(place) {}
  T Eval(Frame& frame) override { return place_.template Load<T>(frame); }
  const Place& place() const { return place_; }

 private:
  Place place_;
};

template <class T>
class Constant final : public ValueNode<T> {
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
// variable = variable op value, where the type needs no conversion. The value is computed first.
// Null where there is no node of its own for that, and the plain operators do it.
NodePtr MakeUpdate(TypeName type, const VariablePlace& place, BinaryOperator op, NodePtr& value);
// Whether the value of a scalar type is a constant or a variable: the same whenever it is read
// between two statements, and nothing happens when it is.
bool IsPlain(TypeName type, Node& value);
// ++ and --; the value is the variable's before or after.
NodePtr MakeStep(TypeName type, const VariablePlace& place, bool up, bool give_old);

}  // namespace tesselc

// Operands that a node reads without a virtual call, where the operand is a variable or a constant.
#pragma once

#include <cstdint>
#include <type_traits>

#include "tesselc/run/node.h"
#include "tesselc/run/variables.h"

namespace tesselc {

template <class T>
struct AnyOperand {
  ValuePtr<T> node;
  T Get(Frame& frame) const { return node->Eval(frame); }
};
template <class T, class Place>
struct VariableOperand {
  Place place;
  T Get(Frame& frame) const { return place.template Get<T>(frame); }
};
template <class T>
struct ConstantOperand {
  T value;
  T Get(Frame&) const { return value; }
};

// The types whose loops are worth the extra code.
template <class T>
inline constexpr bool kHasFastOperands =
    std::is_same_v<T, double> || std::is_same_v<T, int> || std::is_same_v<T, std::int64_t>;

// Calls f with the left operand: a variable where it is one.
template <class T, class F>
NodePtr WithLeftOperand(NodePtr node, F&& f) {
  if constexpr (kHasFastOperands<T>) {
    if (auto* local = dynamic_cast<LoadVariable<T, LocalVariable>*>(node.get())) {
      return f(VariableOperand<T, LocalVariable>{local->place()});
    }
    if (auto* global = dynamic_cast<LoadVariable<T, GlobalVariable>*>(node.get())) {
      return f(VariableOperand<T, GlobalVariable>{global->place()});
    }
  }
  return f(AnyOperand<T>{As<T>(std::move(node))});
}

// Calls f with the right operand: a variable of the frame or a constant where it is one.
template <class T, class F>
NodePtr WithRightOperand(NodePtr node, F&& f) {
  if constexpr (kHasFastOperands<T>) {
    if (auto* local = dynamic_cast<LoadVariable<T, LocalVariable>*>(node.get())) {
      return f(VariableOperand<T, LocalVariable>{local->place()});
    }
    if (auto* constant = dynamic_cast<Constant<T>*>(node.get())) {
      return f(ConstantOperand<T>{constant->value()});
    }
  }
  return f(AnyOperand<T>{As<T>(std::move(node))});
}

}  // namespace tesselc

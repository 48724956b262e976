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
template <class T>
struct VariableOperand {
  DirectVariable place;
  T Get(Frame& frame) const { return place.Get<T>(frame); }
};
template <class T>
struct ConstantOperand {
  T value;
  T Get(Frame&) const { return value; }
};

// Calls f with the operand: a variable where it is one.
template <class T, class F>
NodePtr WithLeftOperand(NodePtr node, F&& f) {
  if constexpr (kIsFastType<T>) {
    if (auto* variable = dynamic_cast<LoadVariable<T, DirectVariable>*>(node.get())) {
      return f(VariableOperand<T>{variable->place()});
    }
  }
  return f(AnyOperand<T>{As<T>(std::move(node))});
}

// Calls f with the operand: a variable or a constant where it is one.
template <class T, class F>
NodePtr WithRightOperand(NodePtr node, F&& f) {
  if constexpr (kIsFastType<T>) {
    if (auto* constant = dynamic_cast<Constant<T>*>(node.get())) {
      return f(ConstantOperand<T>{constant->value()});
    }
  }
  return WithLeftOperand<T>(std::move(node), std::forward<F>(f));
}

}  // namespace tesselc

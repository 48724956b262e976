// The binary operators on elements of every type: what Operate2 of scalars and vectors applies.
#pragma once

#include <span>

#include "frame/element_types.h"
#include "frame/interface/operations.h"
#include "frame/interface/status.h"
#include "kernel/arithmetic.h"
#include "kernel/missing.h"

namespace vela {

// Whether the code (low byte of Operate2's argument) is an operation of T. Points know assign, add
// and subtract only.
template <class T>
constexpr bool IsOperation(unsigned code) {
  const bool additive = code >= operation::kAssign && code <= operation::kSubtract;
  if constexpr (PointElement<T>) return additive;
  return additive || code == operation::kMultiply || code == operation::kDivide ||
         code == operation::kPower;
}

// Assigning a complex value keeps its parts, a NaN part as missing. For the other codes an operand
// or element with a missing or NaN part makes the result missing in both parts, and so does a
// quotient or power that is not finite.
void ApplyOperation(unsigned code, OneTCcomplex& x, const OneTCcomplex& y, bool guard_multiply);

template <PointElement T>
void ApplyOperation(unsigned code, T& x, const T& y, bool) {
  for (int i = 0; i < T::kDimensions; ++i) {
    kernel::ApplyElement(static_cast<kernel::Op>(code), x[i], y[i], false);
  }
}

// x = x <code> y element by element (spans of one length, the same memory or none shared), or with
// one operand for all. The code must be an operation of T.
template <class T>
void ApplyOperation(unsigned code, std::span<T> x, std::span<const T> y, bool guard_multiply) {
  if constexpr (SimpleElement<T>) {
    kernel::Apply(static_cast<kernel::Op>(code), x, y, guard_multiply);
  } else {
    for (std::size_t i = 0; i < x.size(); ++i) ApplyOperation(code, x[i], y[i], guard_multiply);
  }
}

template <class T>
void ApplyOperation(unsigned code, std::span<T> x, const T& y, bool guard_multiply) {
  if constexpr (SimpleElement<T>) {
    kernel::ApplyScalar(static_cast<kernel::Op>(code), x, y, guard_multiply);
  } else {
    for (T& element : x) ApplyOperation(code, element, y, guard_multiply);
  }
}

}  // namespace vela

#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <span>

#include "kernel/convert.h"
#include "kernel/element_types.h"
#include "kernel/missing.h"

namespace vela::kernel {

/// What an element operation does to element x with operand y. The values are the operator codes of
/// the host.
enum class Op { kAssign = 1, kAdd = 2, kSubtract = 3, kMultiply = 4, kDivide = 5, kPower = 21 };

// Element operations, all on this pattern: x = x op y, element by element.
//
// double and float. An operand that is missing or NaN makes the element missing; for every op but
// assign so does an element that is itself missing or NaN. Missing values and NaN therefore
// propagate as the missing value, never as NaN. A float cannot hold the missing value: a float
// element that becomes missing is stored as -0, and no float counts as missing.
// - Divide: the element becomes missing when |y| < 1 and |y| * 1.7e308 <= |x|, so on division by 0.
// - Multiply: plain, but with guard_multiply the element becomes missing when |x| >= 1 and
//   |1.7e308 / x| <= |y|.
// - Power: as the first CheckedPower of power.h.
//
// Integers. Add, subtract and multiply wrap, as does the lowest value divided by -1; division by 0
// leaves 0. Power is taken of doubles and saturates; 0 to a negative power leaves 0.
//
// An op outside the enumeration changes nothing. Nothing allocates or throws.

/// Applies op to x[i] with y[i] for every i. Needs y.size() == x.size(); x and y must be the same
/// storage or not overlap.
template <Element T>
void Apply(Op op, std::span<T> x, std::span<const T> y, bool guard_multiply);

/// Applies op to every element of x with the one operand y.
template <Element T>
void ApplyScalar(Op op, std::span<T> x, T y, bool guard_multiply);

/// Applies op to the one element x.
template <Element T>
void ApplyElement(Op op, T& x, T y, bool guard_multiply) {
  Apply<T>(op, std::span<T>(&x, 1), std::span<const T>(&y, 1), guard_multiply);
}

/// The value of a double as an operand for elements of type T: as ConvertElement, except that for
/// float elements a missing value becomes NaN, so that it still makes the element missing.
template <Element T, Element U>
constexpr T ConvertOperand(U value) {
  if constexpr (std::same_as<T, float>) {
    if (IsMissing(value)) return std::numeric_limits<float>::quiet_NaN();
  }
  return ConvertElement<T>(value);
}

/// Apply for operands of another type, each converted by ConvertOperand first. Needs y.size() ==
/// x.size(), not overlapping. Works in blocks on the stack.
template <Element T, Element U>
void ApplyConverted(Op op, std::span<T> x, std::span<const U> y, bool guard_multiply) {
  constexpr std::size_t kBlock = 4096 / sizeof(T);
  std::array<T, kBlock> operands;
  for (std::size_t begin = 0; begin < x.size(); begin += kBlock) {
    const std::size_t count = std::min(kBlock, x.size() - begin);
    const std::span<T> block = std::span(operands).first(count);
    const std::span<const U> source = y.subspan(begin, count);
    Convert<T, U>(source, block);
    if constexpr (std::same_as<T, float> && std::same_as<U, double>) {
      for (std::size_t i = 0; i < count; ++i) {
        block[i] = IsMissing(source[i]) ? std::numeric_limits<float>::quiet_NaN() : block[i];
      }
    }
    Apply<T>(op, x.subspan(begin, count), block, guard_multiply);
  }
}

}  // namespace vela::kernel

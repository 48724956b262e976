#include "kernel/arithmetic.h"

#include <cmath>
#include <concepts>
#include <type_traits>

#include "kernel/dispatch.h"
#include "kernel/line_start.h"
#include "kernel/power.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/arithmetic.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace {

// The largest magnitude that the divide and multiply guards let through; a little below the largest
// double.
constexpr double kGuardLimit = 1.7e+308;

// Elements whose powers are computed at a time.
constexpr std::size_t kPowerBlock = 256;

template <class T>
constexpr T kStoredMissing = ConvertElement<T>(kMissing);

// Wide enough that no product of two narrow elements overflows the signed type they promote to.
template <class T>
using Wrapping = std::make_unsigned_t<std::common_type_t<T, int>>;

// Each operation gives its plain result and tells where a floating result is withheld because it
// would overflow. Both are always computed and then selected from, so that the loops become vector
// code.

struct Unguarded {
  template <class T>
  static bool Overflows(T /*x*/, T /*y*/) {
    return false;
  }
};

struct Assign : Unguarded {
  template <class T>
  static T Of(T /*x*/, T y) {
    return y;
  }
};

struct Add : Unguarded {
  template <class T>
  static T Of(T x, T y) {
    if constexpr (std::integral<T>) return static_cast<T>(Wrapping<T>(x) + Wrapping<T>(y));
    return x + y;
  }
};

struct Subtract : Unguarded {
  template <class T>
  static T Of(T x, T y) {
    if constexpr (std::integral<T>) return static_cast<T>(Wrapping<T>(x) - Wrapping<T>(y));
    return x - y;
  }
};

struct Multiply : Unguarded {
  template <class T>
  static T Of(T x, T y) {
    if constexpr (std::integral<T>) return static_cast<T>(Wrapping<T>(x) * Wrapping<T>(y));
    return x * y;
  }
};

struct GuardedMultiply : Multiply {
  template <class T>
  static bool Overflows(T x, T y) {
    // Floats are so far below the limit that only infinities reach it.
    if constexpr (std::same_as<T, float>) {
      return (std::abs(x) >= 1) & (std::isinf(x) | std::isinf(y));
    }
    const double magnitude = std::abs(static_cast<double>(x));
    const double limit = kGuardLimit / magnitude;
    return (magnitude >= 1) & (limit <= std::abs(static_cast<double>(y)));
  }
};

struct Divide {
  template <class T>
  static T Of(T x, T y) {
    if constexpr (std::integral<T>) {
      if (y == 0) return 0;
      if constexpr (std::signed_integral<T>) {
        if (y == -1) return Subtract::Of(T{0}, x);
      }
    }
    return static_cast<T>(x / y);
  }
  template <class T>
  static bool Overflows(T x, T y) {
    // No quotient of finite floats reaches the limit.
    if constexpr (std::same_as<T, float>) {
      return (std::abs(y) < 1) & ((y == 0) | std::isinf(x));
    }
    const double divisor = std::abs(static_cast<double>(y));
    const double limit = divisor * kGuardLimit;
    return (divisor < 1) & (limit <= std::abs(static_cast<double>(x)));
  }
};

template <class T>
struct Elements {
  const T* data;
  T operator[](std::size_t i) const { return data[i]; }
  template <class D>
  HWY_INLINE hn::Vec<D> Vector(D d, std::size_t i) const {
    return hn::LoadU(d, data + i);
  }
};

template <class T>
struct Broadcast {
  T value;
  T operator[](std::size_t /*i*/) const { return value; }
  template <class D>
  HWY_INLINE hn::Vec<D> Vector(D d, std::size_t /*i*/) const {
    return hn::Set(d, value);
  }
};

template <class Operation, class T>
bool MakesMissing(T x, T y) {
  const auto is_value = [](T v) {
    // One ordered comparison excludes both NaN and the missing value.
    if constexpr (std::same_as<T, double>) return std::islessgreater(v, kMissing);
    return !std::isnan(v);
  };
  if constexpr (std::same_as<Operation, Assign>) return !is_value(y);
  return !is_value(x) | !is_value(y) | Operation::Overflows(x, y);
}

// x and the operands are the same storage or apart, so no iteration depends on another.
template <class Operation, class T, class Operands>
void LoopFrom(std::size_t begin, std::size_t end, T* x, Operands y) {
#pragma GCC ivdep
  for (std::size_t i = begin; i < end; ++i) {
    const T operand = y[i];
    const T result = Operation::Of(x[i], operand);
    if constexpr (std::integral<T>) {
      x[i] = result;
    } else {
      x[i] = MakesMissing<Operation>(x[i], operand) ? kStoredMissing<T> : result;
    }
  }
}

// Not inline: a short loop of known length would be unrolled into single divisions.
template <class T, class Operands>
HWY_NOINLINE void DivideGuarded(std::size_t begin, std::size_t end, T* x, Operands y) {
  LoopFrom<Divide>(begin, end, x, y);
}

// The quotients from x[begin] on, as many as fill whole vectors; returns where it stops. A quotient
// clearly below the limit needs no guard, and hardly any other is met: comparing quotients keeps
// the guard's own steps out of the way of the divisions.
template <class T, class Operands>
std::size_t DivideWhole(std::size_t begin, std::size_t end, T* x, Operands y) {
  const hn::ScalableTag<T> d;
  const auto limit =
      hn::Set(d, static_cast<T>(std::min<double>(kGuardLimit / 2, std::numeric_limits<T>::max())));
  const auto missing = hn::Set(d, kStoredMissing<T>);
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = begin;
  for (; i + lanes <= end; i += lanes) {
    const auto dividend = hn::LoadU(d, x + i);
    const auto divisor = y.Vector(d, i);
    const auto quotient = hn::Div(dividend, divisor);
    if (HWY_UNLIKELY(!hn::AllTrue(d, hn::Le(hn::Abs(quotient), limit)))) {
      DivideGuarded(i, i + lanes, x, y);
    } else if constexpr (std::same_as<T, double>) {
      const auto values = hn::And(hn::Ne(dividend, missing), hn::Ne(divisor, missing));
      hn::StoreU(hn::IfThenElse(values, quotient, missing), d, x + i);
    } else {
      hn::StoreU(quotient, d, x + i);
    }
  }
  return i;
}

template <class Operation, class T, class Operands>
void Loop(T* x, std::size_t count, Operands y) {
  std::size_t lead = ElementsBeforeLine(x, count);
  LoopFrom<Operation>(0, lead, x, y);
  if constexpr (std::same_as<Operation, Divide> && std::floating_point<T>) {
    lead = DivideWhole(lead, count, x, y);
  }
  LoopFrom<Operation>(lead, count, x, y);
}

// x[i] to the power y[i] for the elements of one block.
template <class T>
void PowerBlock(std::span<T> x, std::span<const double> y) {
  if constexpr (std::same_as<T, double>) {
    CheckedPower(x, y, x);
  } else {
    std::array<double, kPowerBlock> buffer;
    const std::span<double> powers = std::span(buffer).first(x.size());
    Convert<double, T>(x, powers);
    if constexpr (std::floating_point<T>) {
      CheckedPower(powers, y, powers);
      Convert<T, double>(powers, x);
    } else {
      // 0 to a negative power is a division by 0; everything else saturates.
      Power(powers, y, powers);
      for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] = (x[i] == 0) & (y[i] < 0) ? T{0} : ConvertElement<T>(powers[i]);
      }
    }
  }
}

template <class T, class Operands>
void PowerLoop(T* x, std::size_t count, Operands y) {
  std::array<double, kPowerBlock> exponents;
  for (std::size_t begin = 0; begin < count; begin += kPowerBlock) {
    const std::size_t size = std::min(kPowerBlock, count - begin);
    for (std::size_t i = 0; i < size; ++i) exponents[i] = static_cast<double>(y[begin + i]);
    PowerBlock(std::span(x + begin, size), std::span<const double>(exponents).first(size));
  }
}

template <class T, class Operands>
void ApplyAny(Op op, T* x, std::size_t count, Operands y, bool guard_multiply) {
  switch (op) {
    case Op::kAssign:
      return Loop<Assign>(x, count, y);
    case Op::kAdd:
      return Loop<Add>(x, count, y);
    case Op::kSubtract:
      return Loop<Subtract>(x, count, y);
    case Op::kMultiply:
      if constexpr (std::floating_point<T>) {
        if (guard_multiply) return Loop<GuardedMultiply>(x, count, y);
      }
      return Loop<Multiply>(x, count, y);
    case Op::kDivide:
      return Loop<Divide>(x, count, y);
    case Op::kPower:
      return PowerLoop(x, count, y);
  }
}

template <class T>
void ApplyElements(Op op, T* x, const T* y, std::size_t count, bool guard_multiply) {
  ApplyAny(op, x, count, Elements<T>{y}, guard_multiply);
}

template <class T>
void ApplyBroadcast(Op op, T* x, T y, std::size_t count, bool guard_multiply) {
  ApplyAny(op, x, count, Broadcast<T>{y}, guard_multiply);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <Element T>
void Apply(Op op, std::span<T> x, std::span<const T> y, bool guard_multiply) {
  VELA_KERNEL_DISPATCH(ApplyElements<T>)
  (op, x.data(), y.data(), x.size(), guard_multiply);
}

template <Element T>
void ApplyScalar(Op op, std::span<T> x, T y, bool guard_multiply) {
  VELA_KERNEL_DISPATCH(ApplyBroadcast<T>)
  (op, x.data(), y, x.size(), guard_multiply);
}

#define VELA_KERNEL_INSTANTIATE(T)                                 \
  template void Apply(Op, std::span<T>, std::span<const T>, bool); \
  template void ApplyScalar(Op, std::span<T>, T, bool);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

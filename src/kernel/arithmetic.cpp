#include "kernel/arithmetic.h"

#include <cmath>
#include <concepts>
#include <cstring>
#include <type_traits>

#include "kernel/dispatch.h"
#include "kernel/line_start.h"
#include "kernel/power.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/arithmetic.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;
namespace {

// The largest magnitude that the divide and multiply guards let through; a little below the largest
// double.
constexpr double kGuardLimit = 1.7e+308;

template <class T>
constexpr T kStoredMissing = ConvertElement<T>(kMissing);

template <class D, class V>
HWY_INLINE hn::Mask<D> IsNumber(V v) {
  return hn::Eq(v, v);
}

// Neither missing nor NaN.
template <class D, class V>
HWY_INLINE hn::Mask<D> IsValue(D d, V v) {
  if constexpr (std::same_as<hn::TFromD<D>, float>) {
    return IsNumber<D>(v);
  } else {
    const auto present = hn::Ne(v, hn::Set(d, kMissing));
    // On vectors of more than 128 bits this comparison is false for NaN.
    if constexpr (hn::MaxLanes(D()) > 2) return present;
    return hn::And(present, IsNumber<D>(v));
  }
}

// The operations on floating elements. A guarded one withholds results that overflow; only where a
// result is beyond kGuardLimit, or nearly, does it take a closer look.

struct Assign {
  static constexpr bool kGuarded = false;
  template <class V>
  static HWY_INLINE V Of(V /*x*/, V y) {
    return y;
  }
};

struct Add {
  static constexpr bool kGuarded = false;
  template <class V>
  static HWY_INLINE V Of(V x, V y) {
    return hn::Add(x, y);
  }
};

struct Subtract {
  static constexpr bool kGuarded = false;
  template <class V>
  static HWY_INLINE V Of(V x, V y) {
    return hn::Sub(x, y);
  }
};

struct Multiply {
  static constexpr bool kGuarded = false;
  template <class V>
  static HWY_INLINE V Of(V x, V y) {
    return hn::Mul(x, y);
  }
};

struct GuardedMultiply : Multiply {
  static constexpr bool kGuarded = true;
  template <class D, class V>
  static HWY_INLINE hn::Mask<D> Overflows(D d, V x, V y) {
    const auto large = hn::Ge(hn::Abs(x), hn::Set(d, 1));
    if constexpr (std::same_as<hn::TFromD<D>, float>) {
      // Floats are so far below the limit that only infinities reach it.
      return hn::And(large, hn::Or(hn::IsInf(x), hn::IsInf(y)));
    } else {
      return hn::And(large, hn::Le(hn::Div(hn::Set(d, kGuardLimit), hn::Abs(x)), hn::Abs(y)));
    }
  }
};

struct Divide {
  static constexpr bool kGuarded = true;
  template <class V>
  static HWY_INLINE V Of(V x, V y) {
    return hn::Div(x, y);
  }
  template <class D, class V>
  static HWY_INLINE hn::Mask<D> Overflows(D d, V x, V y) {
    const auto small = hn::Lt(hn::Abs(y), hn::Set(d, 1));
    if constexpr (std::same_as<hn::TFromD<D>, float>) {
      // No quotient of finite floats reaches the limit.
      return hn::And(small, hn::Or(hn::Eq(y, hn::Zero(d)), hn::IsInf(x)));
    } else {
      return hn::And(small, hn::Le(hn::Mul(hn::Abs(y), hn::Set(d, kGuardLimit)), hn::Abs(x)));
    }
  }
};

template <class Operation, class D, class T>
HWY_INLINE void Step(D d, T* x, const T* y) {
  const auto operand = hn::LoadU(d, y);
  auto stands = IsValue(d, operand);
  auto result = operand;
  if constexpr (!std::same_as<Operation, Assign>) {
    const auto element = hn::LoadU(d, x);
    stands = hn::And(stands, IsValue(d, element));
    result = Operation::Of(element, operand);
    if constexpr (Operation::kGuarded) {
      const double limit = std::min<double>(kGuardLimit / 2, std::numeric_limits<T>::max());
      const auto is_below = hn::Le(hn::Abs(result), hn::Set(d, static_cast<T>(limit)));
      if (HWY_UNLIKELY(!hn::AllTrue(d, is_below))) {
        stands = hn::AndNot(Operation::Overflows(d, element, operand), stands);
      }
    }
  }
  hn::StoreU(hn::IfThenElse(stands, result, hn::Set(d, kStoredMissing<T>)), d, x);
}

// x and the operands are the same storage or apart, so that no step depends on another. With a
// stride of 0 the operands are one vector.
template <class Operation, class T>
void Loop(T* x, const T* y, std::size_t stride, std::size_t count) {
  ForEachVector(x, count,
                [=](auto d, std::size_t i) HWY_ATTR { Step<Operation>(d, x + i, y + i * stride); });
}

template <class T>
void ApplyFloating(Op op, T* x, const T* y, std::size_t stride, std::size_t count,
                   bool guard_multiply) {
  const hn::ScalableTag<T> d;
  HWY_ALIGN T copies[hn::MaxLanes(d)];
  if (stride == 0) {
    hn::Store(hn::Set(d, *y), d, copies);
    y = copies;
  }
  switch (op) {
    case Op::kAssign:
      return Loop<Assign>(x, y, stride, count);
    case Op::kAdd:
      return Loop<Add>(x, y, stride, count);
    case Op::kSubtract:
      return Loop<Subtract>(x, y, stride, count);
    case Op::kMultiply:
      return guard_multiply ? Loop<GuardedMultiply>(x, y, stride, count)
                            : Loop<Multiply>(x, y, stride, count);
    case Op::kDivide:
      return Loop<Divide>(x, y, stride, count);
    case Op::kPower:
      return;
  }
}

// Calls of `of` for unsigned integers, whose arithmetic wraps as that of signed ones does. Narrow
// types promote to a signed one: the product is taken of unsigned numbers.
template <class T, class Of>
HWY_INLINE void WrappingLoop(T* x, const T* y, std::size_t stride, std::size_t count, Of of) {
  using Wide = std::common_type_t<T, unsigned>;
  if (stride == 0) {
    const Wide operand = *y;
    for (std::size_t i = 0; i < count; ++i) x[i] = static_cast<T>(of(Wide{x[i]}, operand));
  } else {
    for (std::size_t i = 0; i < count; ++i) x[i] = static_cast<T>(of(Wide{x[i]}, Wide{y[i]}));
  }
}

template <std::unsigned_integral T>
void ApplyWrapping(Op op, T* x, const T* y, std::size_t stride, std::size_t count) {
  switch (op) {
    case Op::kAdd:
      return WrappingLoop(x, y, stride, count, [](auto a, auto b) HWY_ATTR { return a + b; });
    case Op::kSubtract:
      return WrappingLoop(x, y, stride, count, [](auto a, auto b) HWY_ATTR { return a - b; });
    case Op::kMultiply:
      return WrappingLoop(x, y, stride, count, [](auto a, auto b) HWY_ATTR { return a * b; });
    default:
      return;
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

template <std::integral T>
T Quotient(T x, T y) {
  if (y == 0) return 0;
  if constexpr (std::signed_integral<T>) {
    if (y == -1) return static_cast<T>(0 - static_cast<std::make_unsigned_t<T>>(x));
  }
  return static_cast<T>(x / y);
}

// Elements whose powers are computed at a time.
constexpr std::size_t kPowerBlock = 256;

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
    } else {
      // 0 to a negative power is a division by 0; everything else saturates.
      Power(powers, y, powers);
      for (std::size_t i = 0; i < x.size(); ++i) {
        powers[i] = x[i] == 0 && y[i] < 0 ? 0 : powers[i];
      }
    }
    Convert<T, double>(powers, x);
  }
}

template <class T>
void PowerLoop(std::span<T> x, const T* y, std::size_t stride) {
  std::array<double, kPowerBlock> exponents;
  if (stride == 0) exponents.fill(static_cast<double>(*y));
  for (std::size_t begin = 0; begin < x.size(); begin += kPowerBlock) {
    const std::span<T> block = x.subspan(begin, std::min(kPowerBlock, x.size() - begin));
    const std::span<double> powers = std::span(exponents).first(block.size());
    if (stride != 0) Convert<double, T>(std::span<const T>(y + begin, block.size()), powers);
    PowerBlock<T>(block, powers);
  }
}

template <class T>
void ApplyInteger(Op op, std::span<T> x, const T* y, std::size_t stride) {
  if (op == Op::kAssign) {
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = y[i * stride];
  } else if (op == Op::kDivide) {
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = Quotient(x[i], y[i * stride]);
  } else {
    using Bits = hwy::UnsignedFromSize<sizeof(T)>;
    const auto apply = VELA_KERNEL_DISPATCH(ApplyWrapping<Bits>);
    auto* const target = reinterpret_cast<Bits*>(x.data());
    const auto* const operands = reinterpret_cast<const Bits*>(y);
    const std::size_t lead = ElementsBeforeLine(target, x.size());
    apply(op, target, operands, stride, lead);
    apply(op, target + lead, operands + lead * stride, stride, x.size() - lead);
  }
}

// With a stride of 0 the one operand is taken for every element.
template <class T>
void ApplyAny(Op op, std::span<T> x, const T* y, std::size_t stride, bool guard_multiply) {
  if (op == Op::kPower) {
    PowerLoop(x, y, stride);
  } else if constexpr (std::floating_point<T>) {
    VELA_KERNEL_DISPATCH(ApplyFloating<T>)
    (op, x.data(), y, stride, x.size(), guard_multiply);
  } else {
    ApplyInteger(op, x, y, stride);
  }
}

}  // namespace

template <Element T>
void Apply(Op op, std::span<T> x, std::span<const T> y, bool guard_multiply) {
  ApplyAny(op, x, y.data(), 1, guard_multiply);
}

template <Element T>
void ApplyScalar(Op op, std::span<T> x, T y, bool guard_multiply) {
  ApplyAny(op, x, &y, 0, guard_multiply);
}

#define VELA_KERNEL_INSTANTIATE(T)                                 \
  template void Apply(Op, std::span<T>, std::span<const T>, bool); \
  template void ApplyScalar(Op, std::span<T>, T, bool);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

#include "kernel/nonzero.h"

#include <algorithm>
#include <concepts>
#include <limits>
#include <type_traits>

#include "kernel/dispatch.h"
#include "kernel/element_range.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/nonzero.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// What decides a row or column: for "all" an element that is zero, for "any" one that is not. Of
// floating elements the magnitude is compared with a bound, of integers the element with 0.
template <bool kAll, class D, class V>
HWY_INLINE hn::Mask<D> Decides(D d, V x, V bound) {
  if constexpr (std::floating_point<hn::TFromD<D>>) {
    return kAll ? hn::Le(hn::Abs(x), bound) : hn::Ge(hn::Abs(x), bound);
  } else {
    return kAll ? hn::Eq(x, hn::Zero(d)) : hn::Ne(x, hn::Zero(d));
  }
}

template <bool kAll, class T>
bool AnyDecides(const T* HWY_RESTRICT x, std::size_t n, T bound) {
  const hn::ScalableTag<T> d;
  const hn::CappedTag<T, 1> one;
  const std::size_t lanes = hn::Lanes(d);
  const auto decides = [=](auto tag, std::size_t i) HWY_ATTR {
    return Decides<kAll>(tag, hn::LoadU(tag, x + i), hn::Set(tag, bound));
  };
  std::size_t i = 0;
  for (; i + 4 * lanes <= n; i += 4 * lanes) {
    const auto first = hn::Or(decides(d, i), decides(d, i + lanes));
    const auto second = hn::Or(decides(d, i + 2 * lanes), decides(d, i + 3 * lanes));
    if (!hn::AllFalse(d, hn::Or(first, second))) return true;
  }
  for (; i < n; ++i) {
    if (!hn::AllFalse(one, decides(one, i))) return true;
  }
  return false;
}

template <bool kAll, class T>
void DecideRows(const T* x, std::size_t rows, std::size_t cols, T bound, double* result) {
  for (std::size_t row = 0; row < rows; ++row) {
    const bool decided = AnyDecides<kAll>(x + row * cols, cols, bound);
    result[row] = decided == kAll ? 0 : 1;
  }
}

// Columns that are done at a time, so that their state stays in the first-level cache, and rows
// until the next look whether all of them are decided.
template <class T>
constexpr std::size_t kStrip = 8192 / sizeof(T);
constexpr std::size_t kRowsPerLook = 16;

// As many states as the strip has columns: all bits once the column is decided, before that none.
template <bool kAll, class T, class State>
void DecideStrip(const T* HWY_RESTRICT x, std::size_t rows, std::size_t stride, T bound,
                 State* HWY_RESTRICT states, std::size_t width) {
  const hn::ScalableTag<T> d;
  const hn::CappedTag<T, 1> one;
  const std::size_t lanes = hn::Lanes(d);
  std::fill_n(states, width, State{0});
  for (std::size_t row = 0; row < rows; ++row, x += stride) {
    const auto visit = [=](auto tag, std::size_t i) HWY_ATTR {
      const hn::RebindToUnsigned<decltype(tag)> bits;
      const auto decides = Decides<kAll>(tag, hn::LoadU(tag, x + i), hn::Set(tag, bound));
      const auto sets = hn::BitCast(bits, hn::VecFromMask(tag, decides));
      hn::StoreU(hn::Or(hn::LoadU(bits, states + i), sets), bits, states + i);
    };
    std::size_t i = 0;
    for (; i + lanes <= width; i += lanes) visit(d, i);
    for (; i < width; ++i) visit(one, i);
    if (row % kRowsPerLook == kRowsPerLook - 1 && !AnyDecides<true>(states, width, State{0})) {
      return;
    }
  }
}

template <bool kAll, class T>
void DecideColumns(const T* x, std::size_t rows, std::size_t cols, T bound, double* result) {
  hwy::UnsignedFromSize<sizeof(T)> states[kStrip<T>];
  for (std::size_t begin = 0; begin < cols; begin += kStrip<T>) {
    const std::size_t width = std::min(kStrip<T>, cols - begin);
    DecideStrip<kAll>(x + begin, rows, cols, bound, states, width);
    for (std::size_t k = 0; k < width; ++k) {
      result[begin + k] = (states[k] != 0) == kAll ? 0 : 1;
    }
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

template <bool kAll, class T>
void Decide(MatrixSpan<const T> x, bool by_rows, T bound, std::span<double> result) {
  // An integer is zero whatever its sign would be.
  using Lane = std::conditional_t<std::integral<T>, hwy::UnsignedFromSize<sizeof(T)>, T>;
  const auto decide = by_rows ? VELA_KERNEL_DISPATCH(DecideRows<kAll, Lane>)
                              : VELA_KERNEL_DISPATCH(DecideColumns<kAll, Lane>);
  decide(reinterpret_cast<const Lane*>(x.data), x.rows, x.cols, static_cast<Lane>(bound),
         result.data());
}

// NaN, with which nothing compares, where there is no such element.
template <class T>
T BoundOr(const ElementRange<T>& range, T bound) {
  return range.IsEmpty() ? std::numeric_limits<T>::quiet_NaN() : bound;
}

}  // namespace

template <Element T>
void AllNonZero(MatrixSpan<const T> x, bool by_rows, double tolerance, std::span<double> result) {
  const ElementRange<T> zero = ElementsBelow<T>(tolerance);
  Decide<true>(x, by_rows, BoundOr(zero, zero.high), result);
}

template <Element T>
void AnyNonZero(MatrixSpan<const T> x, bool by_rows, double tolerance, std::span<double> result) {
  const ElementRange<T> non_zero = ElementsAbove<T>(tolerance);
  Decide<false>(x, by_rows, BoundOr(non_zero, non_zero.low), result);
}

#define VELA_KERNEL_INSTANTIATE(T)                                                   \
  template void AllNonZero<T>(MatrixSpan<const T>, bool, double, std::span<double>); \
  template void AnyNonZero<T>(MatrixSpan<const T>, bool, double, std::span<double>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

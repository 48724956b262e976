#include "kernel/min_max.h"

#include <algorithm>
#include <limits>
#include <type_traits>

#include "kernel/dispatch.h"
#include "kernel/read_ahead.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/min_max.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Positions are not tracked per lane: only the block that last moved an extreme is remembered, and
// searched at the end.
constexpr std::size_t kBlockBytes = 8192;
constexpr std::size_t kChains = 4;

template <class T>
struct Range {
  T low, high;
};

// The range widened to hold the block's values. Without kSkipMissing, the quicker form, a missing
// element counts as a number, and has_missing tells of it. Where a lane is NaN, or made NaN because
// it is missing, x86 Min and Max give their second operand.
template <bool kSkipMissing, class T>
Range<T> Widen(Range<T> range, const T* HWY_RESTRICT x, std::size_t n, bool& has_missing) {
  const hn::ScalableTag<T> d;
  using V = hn::Vec<decltype(d)>;
  const std::size_t lanes = hn::Lanes(d);
  V low[kChains], high[kChains];
  for (std::size_t k = 0; k < kChains; ++k) {
    low[k] = hn::Set(d, range.low);
    high[k] = hn::Set(d, range.high);
  }
  [[maybe_unused]] auto missing = hn::MaskFromVec(hn::Zero(d));

  const auto visit = [&](std::size_t k, std::size_t i) HWY_ATTR {
    V v = hn::LoadU(d, x + i);
    if constexpr (std::same_as<T, double>) {
      const auto is_missing = hn::Eq(v, hn::Set(d, kMissing));
      if constexpr (kSkipMissing) {
        v = hn::IfThenElse(is_missing, hn::Set(d, std::numeric_limits<T>::quiet_NaN()), v);
      } else {
        missing = hn::Or(missing, is_missing);
      }
    }
    low[k] = hn::Min(v, low[k]);
    high[k] = hn::Max(v, high[k]);
  };
  std::size_t i = 0;
  for (; i + kChains * lanes <= n; i += kChains * lanes) {
    ReadAhead(x + i, kChains * lanes * sizeof(T));
    for (std::size_t k = 0; k < kChains; ++k) visit(k, i + k * lanes);
  }
  for (; i + lanes <= n; i += lanes) visit(0, i);

  for (std::size_t k = 1; k < kChains; ++k) {
    low[0] = hn::Min(low[0], low[k]);
    high[0] = hn::Max(high[0], high[k]);
  }
  HWY_ALIGN T lows[hn::MaxLanes(d)];
  HWY_ALIGN T highs[hn::MaxLanes(d)];
  hn::Store(low[0], d, lows);
  hn::Store(high[0], d, highs);
  range = {*std::min_element(lows, lows + lanes), *std::max_element(highs, highs + lanes)};
  if constexpr (std::same_as<T, double>) has_missing = !hn::AllFalse(d, missing);
  for (; i < n; ++i) {
    if (IsMissing(x[i])) {
      has_missing = true;
    } else {
      range.low = x[i] < range.low ? x[i] : range.low;
      range.high = x[i] > range.high ? x[i] : range.high;
    }
  }
  return range;
}

template <class T>
std::size_t CountMissing(const T* x, std::size_t n) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < n; ++i) count += IsMissing(x[i]);
  return count;
}

// The first position of a value that is in x.
template <class T>
std::size_t Locate(const T* HWY_RESTRICT x, std::size_t n, T value) {
  const hn::ScalableTag<T> d;
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + lanes <= n; i += lanes) {
    const auto found = hn::FindFirstTrue(d, hn::Eq(hn::LoadU(d, x + i), hn::Set(d, value)));
    if (found >= 0) return i + static_cast<std::size_t>(found);
  }
  return static_cast<std::size_t>(std::find(x + i, x + n, value) - x);
}

template <class Element>
MinMaxResult MinMaxOf(const Element* elements, std::size_t n) {
  using T = LaneOf<Element>;
  const T* x = reinterpret_cast<const T*>(elements);
  const std::size_t first =
      static_cast<std::size_t>(std::find_if(x, x + n, [](T v) { return !IsMissing(v); }) - x);
  if (first == n) return {};

  MinMaxResult result;
  if (x[first] != x[first]) {
    result.min = result.max = static_cast<double>(x[first]);
    result.min_index = result.max_index = static_cast<std::ptrdiff_t>(first);
    result.count = n - CountMissing(x, n);
    return result;
  }

  constexpr std::size_t kBlock = kBlockBytes / sizeof(T);
  Range<T> range{x[first], x[first]};
  std::size_t low_block = first, high_block = first, missing = first;
  for (std::size_t begin = first; begin < n; begin += kBlock) {
    const std::size_t size = std::min(kBlock, n - begin);
    bool has_missing = false;
    Range<T> wider = Widen<false>(range, x + begin, size, has_missing);
    if (has_missing) {
      wider = Widen<true>(range, x + begin, size, has_missing);
      missing += CountMissing(x + begin, size);
    }
    if (wider.low < range.low) low_block = begin;
    if (wider.high > range.high) high_block = begin;
    range = wider;
  }
  const std::size_t low = low_block + Locate(x + low_block, n - low_block, range.low);
  const std::size_t high = high_block + Locate(x + high_block, n - high_block, range.high);
  result.min = static_cast<double>(x[low]);
  result.max = static_cast<double>(x[high]);
  result.min_index = static_cast<std::ptrdiff_t>(low);
  result.max_index = static_cast<std::ptrdiff_t>(high);
  result.count = n - missing;
  return result;
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <Element T>
MinMaxResult MinMax(std::span<const T> x) {
  return VELA_KERNEL_DISPATCH(MinMaxOf<T>)(x.data(), x.size());
}

#define VELA_KERNEL_INSTANTIATE(T) template MinMaxResult MinMax<T>(std::span<const T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

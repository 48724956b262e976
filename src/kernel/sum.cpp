#include "kernel/sum.h"

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>

#include "kernel/dispatch.h"
#include "kernel/double_blocks.h"
#include "kernel/missing.h"
#include "kernel/read_ahead.h"

#ifndef VELA_KERNEL_SUM_PARTS
#define VELA_KERNEL_SUM_PARTS
namespace vela::kernel {

// An unevaluated sum of two numbers: what was added up, and what rounding took from it. And how
// many missing elements were passed over, where they are counted.
struct SumParts {
  double sum = 0, rest = 0;
  std::size_t missing = 0;
};

}  // namespace vela::kernel
#endif

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/sum.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/load_doubles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Zero in place of missing elements, which are added to the count.
template <bool kCount, class D, class T>
HWY_INLINE hn::Vec<D> LoadPresent(D d, const T* x, std::size_t& missing) {
  const auto v = LoadDoubles(d, x);
  if constexpr (!std::same_as<T, double>) return v;
  const auto is_missing = hn::Eq(v, hn::Set(d, kMissing));
  if constexpr (kCount) missing += hn::CountTrue(d, is_missing);
  return hn::IfThenZeroElse(is_missing, v);
}

// What each lane added up, and apart from it what rounding took from that: the error of an addition
// is a number too (Knuth). Part of the additions are fused ones, of which processors do some where
// they cannot do plain ones, so that more run at once.
template <class D>
struct LaneSums {
  using V = hn::Vec<D>;
  V sum, rest;

  static HWY_INLINE LaneSums Zero() { return {hn::Zero(D()), hn::Zero(D())}; }

  // scale is a power of 2.
  HWY_INLINE void Add(V x, V scale) {
    const V total = hn::MulAdd(x, scale, sum);
    const V added = hn::Sub(total, sum);
    const V lost = hn::Sub(sum, hn::Sub(total, added));
    rest = hn::Add(rest, hn::Add(lost, hn::MulSub(x, scale, added)));
    sum = total;
  }
  HWY_INLINE void Add(const LaneSums& other) {
    rest = hn::Add(rest, other.rest);
    Add(other.sum, hn::Set(D(), 1.0));
  }
};

// The sum of the elements, each times a power of 2, with as many chains side by side as it takes to
// keep the adders busy.
template <class T, bool kCount>
SumParts SumCompensated(const T* HWY_RESTRICT x, std::size_t n, double power) {
  using D = hn::ScalableTag<double>;
  using One = hn::CappedTag<double, 1>;
  const D d;
  const One one;
  constexpr std::size_t kChains = 4;
  const std::size_t lanes = hn::Lanes(d);
  const auto scale = hn::Set(d, power);
  std::size_t missing = 0;
  const auto load = [&](auto tag, std::size_t i)
                        HWY_ATTR { return LoadPresent<kCount>(tag, x + i, missing); };
  LaneSums<D> chains[kChains];
  for (auto& chain : chains) chain = LaneSums<D>::Zero();
  std::size_t i = 0;
  for (; i + kChains * lanes <= n; i += kChains * lanes) {
    ReadAhead(x + i, kChains * lanes * sizeof(T));
    for (std::size_t k = 0; k < kChains; ++k) {
      chains[k].Add(load(d, i + k * lanes), scale);
    }
  }
  for (; i + lanes <= n; i += lanes) chains[0].Add(load(d, i), scale);
  for (std::size_t k = 1; k < kChains; ++k) chains[0].Add(chains[k]);

  HWY_ALIGN double sums[hn::MaxLanes(d)];
  HWY_ALIGN double rests[hn::MaxLanes(d)];
  hn::Store(chains[0].sum, d, sums);
  hn::Store(chains[0].rest, d, rests);
  auto total = LaneSums<One>::Zero();
  for (; i < n; ++i) total.Add(load(one, i), hn::Set(one, power));
  for (std::size_t k = 0; k < lanes; ++k) {
    total.Add(LaneSums<One>{hn::Set(one, sums[k]), hn::Set(one, rests[k])});
  }
  return {hn::GetLane(total.sum), hn::GetLane(total.rest), missing};
}

template <class T>
std::int64_t SumIntegers(const T* HWY_RESTRICT x, std::size_t n) {
  std::int64_t total = 0;
  for (std::size_t i = 0; i < n; ++i) total += x[i];
  return total;
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

double LeftToRight(std::span<const double> x, double scale) {
  double total = 0;
  for (const double value : x) total += IsMissing(value) ? 0 : value * scale;
  return total;
}

// The sum that the parts of x, added up unscaled, come to.
double Total(const SumParts& parts, std::span<const double> x) {
  const double total = parts.sum + parts.rest;
  if (std::isfinite(total)) return total;

  // A part of the sum left the range of doubles; scaled down by more than there are elements none
  // can, and what that takes from small elements is far below the last place of such large ones.
  constexpr double kScale = 0x1p-40;
  const SumParts scaled =
      VELA_KERNEL_DISPATCH(SumCompensated<double, false>)(x.data(), x.size(), kScale);
  const double small = scaled.sum + scaled.rest;
  if (!std::isfinite(small)) return LeftToRight(x, kScale);  // of infinities or NaN
  const double large = small / kScale;
  return std::isfinite(large) ? large : LeftToRight(x, 1);
}

// Converted, no element comes near the range of doubles.
template <class T>
double SumConverted(std::span<const T> x) {
  SumParts total;
  ForEachLoadableBlock(x, [&]<class U>(std::span<const U> block, std::size_t /*offset*/) {
    const SumParts parts =
        VELA_KERNEL_DISPATCH(SumCompensated<U, false>)(block.data(), block.size(), 1.0);
    const double sum = total.sum + parts.sum;
    const double added = sum - total.sum;
    total.rest += parts.rest + (total.sum - (sum - added)) + (parts.sum - added);
    total.sum = sum;
    return true;
  });
  return std::isfinite(total.sum) ? total.sum + total.rest : total.sum;
}

}  // namespace

template <Element T>
double Sum(std::span<const T> x) {
  if constexpr (std::same_as<T, double>) {
    return Total(VELA_KERNEL_DISPATCH(SumCompensated<T, false>)(x.data(), x.size(), 1.0), x);
  } else if constexpr (std::integral<T> && sizeof(T) <= 4) {
    return static_cast<double>(VELA_KERNEL_DISPATCH(SumIntegers<T>)(x.data(), x.size()));
  } else {
    return SumConverted(x);
  }
}

template <Element T>
PresentSum SumPresent(std::span<const T> x) {
  if constexpr (std::same_as<T, double>) {
    const SumParts parts = VELA_KERNEL_DISPATCH(SumCompensated<T, true>)(x.data(), x.size(), 1.0);
    return {Total(parts, x), x.size() - parts.missing};
  } else {
    return {Sum(x), x.size()};
  }
}

#define VELA_KERNEL_INSTANTIATE(T)            \
  template double Sum<T>(std::span<const T>); \
  template PresentSum SumPresent<T>(std::span<const T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

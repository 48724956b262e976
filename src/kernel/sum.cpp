#include "kernel/sum.h"

#include <concepts>
#include <cstddef>
#include <cstdint>

#include "kernel/dispatch.h"
#include "kernel/double_blocks.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/sum.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/load_doubles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// As many running sums as it takes to keep two adders busy over the latency of an addition.
constexpr std::size_t kSums = 8;

using Doubles = hn::ScalableTag<double>;

// Zero in place of missing elements.
template <class T>
HWY_INLINE hn::Vec<Doubles> Load(const T* x) {
  const auto v = LoadDoubles(Doubles(), x);
  if constexpr (!std::same_as<T, double>) return v;
  return hn::IfThenZeroElse(hn::Eq(v, hn::Set(Doubles(), kMissing)), v);
}

template <class T>
double SumBlock(const T* HWY_RESTRICT x, std::size_t n) {
  const Doubles d;
  const std::size_t lanes = hn::Lanes(d);
  hn::Vec<Doubles> sums[kSums];
  for (auto& sum : sums) sum = hn::Zero(d);

  std::size_t i = 0;
  for (; i + kSums * lanes <= n; i += kSums * lanes) {
    for (std::size_t k = 0; k < kSums; ++k) sums[k] = hn::Add(sums[k], Load(x + i + k * lanes));
  }
  for (; i + lanes <= n; i += lanes) sums[0] = hn::Add(sums[0], Load(x + i));
  for (std::size_t width = kSums / 2; width > 0; width /= 2) {
    for (std::size_t k = 0; k < width; ++k) sums[k] = hn::Add(sums[k], sums[k + width]);
  }
  double total = hn::GetLane(hn::SumOfLanes(d, sums[0]));
  for (; i < n; ++i) total += IsMissing(x[i]) ? 0.0 : static_cast<double>(x[i]);
  return total;
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

template <class T>
double PairwiseSum(std::span<const T> x) {
  if (x.size() > kBlockSize) {
    const std::size_t half = (x.size() / 2 + kBlockSize - 1) / kBlockSize * kBlockSize;
    return PairwiseSum(x.first(half)) + PairwiseSum(x.subspan(half));
  }
  double total = 0.0;
  ForEachLoadableBlock(x, [&]<class U>(std::span<const U> block, std::size_t /*offset*/) {
    total = VELA_KERNEL_DISPATCH(SumBlock<U>)(block.data(), block.size());
    return true;
  });
  return total;
}

}  // namespace

template <Element T>
double Sum(std::span<const T> x) {
  return PairwiseSum(x);
}

#define VELA_KERNEL_INSTANTIATE(T) template double Sum<T>(std::span<const T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

#include "kernel/sum.h"

#include <cstddef>

#include "kernel/double_blocks.h"
#include "kernel/missing.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/sum.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// As many running sums as it takes to keep two adders busy over the latency of an addition.
constexpr std::size_t kSums = 8;

double SumBlock(const double* HWY_RESTRICT x, std::size_t n) {
  const hn::ScalableTag<double> d;
  const auto missing = hn::Set(d, kMissing);
  const std::size_t lanes = hn::Lanes(d);
  hn::Vec<decltype(d)> sums[kSums];
  for (auto& sum : sums) sum = hn::Zero(d);

  std::size_t i = 0;
  for (; i + kSums * lanes <= n; i += kSums * lanes) {
    for (std::size_t k = 0; k < kSums; ++k) {
      const auto v = hn::LoadU(d, x + i + k * lanes);
      sums[k] = hn::Add(sums[k], hn::IfThenZeroElse(hn::Eq(v, missing), v));
    }
  }
  for (; i + lanes <= n; i += lanes) {
    const auto v = hn::LoadU(d, x + i);
    sums[0] = hn::Add(sums[0], hn::IfThenZeroElse(hn::Eq(v, missing), v));
  }
  for (std::size_t width = kSums / 2; width > 0; width /= 2) {
    for (std::size_t k = 0; k < width; ++k) sums[k] = hn::Add(sums[k], sums[k + width]);
  }
  double total = hn::GetLane(hn::SumOfLanes(d, sums[0]));
  for (; i < n; ++i) total += IsMissing(x[i]) ? 0.0 : x[i];
  return total;
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

HWY_EXPORT(SumBlock);

template <class T>
double PairwiseSum(std::span<const T> x) {
  if (x.size() > kBlockSize) {
    const std::size_t half = (x.size() / 2 + kBlockSize - 1) / kBlockSize * kBlockSize;
    return PairwiseSum(x.first(half)) + PairwiseSum(x.subspan(half));
  }
  double total = 0.0;
  ForEachDoubleBlock(x, [&](std::span<const double> block, std::size_t /*offset*/) {
    total = HWY_DYNAMIC_DISPATCH(SumBlock)(block.data(), block.size());
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

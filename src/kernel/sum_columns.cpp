#include "kernel/sum_columns.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstddef>

#include "kernel/dispatch.h"
#include "kernel/double_blocks.h"
#include "kernel/missing.h"
#include "kernel/read_ahead.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/sum_columns.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/load_doubles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Adds a row to what each column added up, and to what rounding took from that (Knuth).
template <class T>
void AddRow(const T* HWY_RESTRICT x, std::size_t count, double* HWY_RESTRICT sums,
            double* HWY_RESTRICT rests) {
  const auto add = [=](auto d, std::size_t i) HWY_ATTR {
    auto v = LoadDoubles(d, x + i);
    if constexpr (std::same_as<T, double>) {
      v = hn::IfThenZeroElse(hn::Eq(v, hn::Set(d, kMissing)), v);
    }
    const auto sum = hn::LoadU(d, sums + i);
    const auto total = hn::Add(sum, v);
    const auto added = hn::Sub(total, sum);
    const auto lost = hn::Add(hn::Sub(sum, hn::Sub(total, added)), hn::Sub(v, added));
    hn::StoreU(total, d, sums + i);
    hn::StoreU(hn::Add(hn::LoadU(d, rests + i), lost), d, rests + i);
  };
  const hn::ScalableTag<double> d;
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= count; i += hn::Lanes(d)) {
    ReadAhead(x + i, hn::Lanes(d) * sizeof(T));
    add(d, i);
  }
  for (; i < count; ++i) add(hn::CappedTag<double, 1>(), i);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

// A strip of columns at a time, so that what they add up to stays in the first-level cache.
template <Element T>
void SumColumns(MatrixSpan<const T> x, std::span<double> sums) {
  std::array<double, kBlockSize> rests;
  for (std::size_t begin = 0; begin < x.cols; begin += kBlockSize) {
    const std::size_t width = std::min(kBlockSize, x.cols - begin);
    const std::span<double> totals = sums.subspan(begin, width);
    std::fill(totals.begin(), totals.end(), 0.0);
    rests.fill(0);
    for (std::size_t row = 0; row < x.rows; ++row) {
      const std::span<const T> strip = x.Row(row).subspan(begin, width);
      ForEachLoadableBlock(strip, [&]<class U>(std::span<const U> block, std::size_t /*offset*/) {
        VELA_KERNEL_DISPATCH(AddRow<U>)(block.data(), width, totals.data(), rests.data());
        return true;
      });
    }
    for (std::size_t k = 0; k < width; ++k) {
      totals[k] += std::isfinite(totals[k]) ? rests[k] : 0;
    }
  }
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template void SumColumns<T>(MatrixSpan<const T>, std::span<double>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

#include "kernel/histogram.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <limits>
#include <stdexcept>

#include "kernel/dispatch.h"
#include "kernel/double_blocks.h"
#include "kernel/edge_search.h"
#include "kernel/missing.h"

#ifndef VELA_KERNEL_HISTOGRAM_TABLES
#define VELA_KERNEL_HISTOGRAM_TABLES
namespace vela::kernel {
// Neighbours often fall in one bin; taking turns on several tables keeps an increment from waiting
// for the one before it.
constexpr std::size_t kTables = 4;

// How many elements of a block are not numbers.
struct SpecialCounts {
  std::uint32_t missing, nan;
};
}  // namespace vela::kernel
#endif

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/histogram.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

HWY_INLINE void CountCells(const EdgeSearch& search, std::size_t first_step, const double* x,
                           const std::int32_t* cells, std::size_t n,
                           std::uint32_t* HWY_RESTRICT tables, std::size_t stride) {
  std::size_t i = 0;
  for (; i + kTables <= n; i += kTables) {
    for (std::size_t t = 0; t < kTables; ++t) {
      ++tables[t * stride + search.Reached(x[i + t], cells[i + t], first_step)];
    }
  }
  for (; i < n; ++i) ++tables[search.Reached(x[i], cells[i], first_step)];
}

// tables[t * stride + r] counts the elements that reached r edges. At most kBlockSize elements.
void CountReached(const EdgeSearch& search, const double* HWY_RESTRICT x, std::size_t n,
                  std::uint32_t* HWY_RESTRICT tables, std::size_t stride) {
  std::array<std::int32_t, kBlockSize> cells;
  for (std::size_t i = 0; i < n; ++i) cells[i] = search.CellOf(x[i]);
  // With one edge per cell the search is a single comparison.
  if (search.first_step == 1) {
    CountCells(search, 1, x, cells.data(), n, tables, stride);
  } else {
    CountCells(search, search.first_step, x, cells.data(), n, tables, stride);
  }
}

SpecialCounts CountSpecial(const double* HWY_RESTRICT x, std::size_t n) {
  std::uint32_t missing = 0, nan = 0;
  for (std::size_t i = 0; i < n; ++i) {
    missing += IsMissing(x[i]) ? 1 : 0;
    nan += std::isnan(x[i]) ? 1 : 0;
  }
  return {missing, nan};
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

// How many elements reached each number of edges, 0 to all. A NaN, which by the comparisons of a
// binary search lies above every edge but the last, reaches all but one.
template <class T>
std::vector<std::size_t> CountByReached(std::span<const T> x, std::span<const double> edges) {
  const EdgeSearch search(edges, x.size());
  const std::size_t stride = edges.size() + 1;
  std::vector<std::uint32_t> tables(kTables * stride);
  std::size_t missing = 0, nan = 0;
  ForEachDoubleBlock(x, [&](std::span<const double> block, std::size_t /*offset*/) {
    VELA_KERNEL_DISPATCH(CountReached)(search, block.data(), block.size(), tables.data(), stride);
    if constexpr (std::floating_point<T>) {
      const SpecialCounts special = VELA_KERNEL_DISPATCH(CountSpecial)(block.data(), block.size());
      missing += special.missing;
      nan += special.nan;
    }
    return true;
  });
  std::vector<std::size_t> reached(stride);
  for (std::size_t t = 0; t < kTables; ++t) {
    for (std::size_t i = 0; i < stride; ++i) reached[i] += tables[t * stride + i];
  }
  reached[search.Reached(kMissing, search.CellOf(kMissing), search.first_step)] -= missing;
  reached[0] -= nan;
  if (edges.size() > 1) reached[edges.size() - 1] += nan;
  return reached;
}

}  // namespace

template <Element T>
void FrequencyCount(std::span<const T> x, std::span<const double> edges, bool underflow,
                    bool overflow, std::span<int> counts) {
  if (counts.size() != FrequencyBins(edges.size(), underflow, overflow)) {
    throw std::invalid_argument("FrequencyCount: counts do not match the edges");
  }
  if (edges.empty()) return;
  const std::vector<std::size_t> reached = CountByReached(x, edges);
  std::transform(reached.begin() + (underflow ? 0 : 1), reached.end() - (overflow ? 0 : 1),
                 counts.begin(), [](std::size_t count) { return static_cast<int>(count); });
}

#define VELA_KERNEL_INSTANTIATE(T)                                                         \
  template void FrequencyCount<T>(std::span<const T>, std::span<const double>, bool, bool, \
                                  std::span<int>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

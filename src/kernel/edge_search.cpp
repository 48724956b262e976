#include "kernel/edge_search.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/edge_search.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

constexpr std::int64_t kUlps = 4;

// The least value that counts as equal to an edge. As integers, the bits of doubles step through
// neighbouring values, away from zero. Without a branch, as there may be more edges than elements.
double LeastEqual(double edge) {
  constexpr auto kSign = std::numeric_limits<std::int64_t>::min();
  constexpr auto kLargest = std::bit_cast<std::int64_t>(std::numeric_limits<double>::max());
  const auto negate_if = [](std::int64_t negative, std::int64_t number) {
    return (number ^ negative) - negative;
  };
  const auto bits = std::bit_cast<std::int64_t>(edge);
  const std::int64_t magnitude = bits & ~kSign;
  const std::int64_t least = std::max(negate_if(bits >> 63, magnitude) - kUlps, -kLargest);
  const std::int64_t least_bits = negate_if(least >> 63, least) | (least & kSign);
  return magnitude > kLargest ? edge : std::bit_cast<double>(least_bits);
}

void SetLeastEqual(const double* edges, std::size_t count, double* HWY_RESTRICT least) {
  for (std::size_t i = 0; i < count; ++i) least[i] = LeastEqual(edges[i]);
}

// False when there is a NaN.
bool Ascends(const double* edges, std::size_t count) {
  std::uint64_t falls = edges[0] == edges[0] ? 0 : 1;
  for (std::size_t i = 1; i < count; ++i) falls += edges[i - 1] <= edges[i] ? 0 : 1;
  return falls == 0;
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

namespace {

constexpr std::size_t kFewestCells = 256;
constexpr std::size_t kMostCells = 1 << 16;
constexpr std::size_t kCellsPerEdge = 8;
constexpr std::size_t kFilledCells = 16;

}  // namespace

EdgeSearch::EdgeSearch(std::span<const double> ascending, std::size_t elements) {
  const std::size_t count = ascending.size();
  edges.resize(count);
  VELA_KERNEL_DISPATCH(SetLeastEqual)(ascending.data(), count, edges.data());

  std::size_t cells = 1;
  if (count > 0 && VELA_KERNEL_DISPATCH(Ascends)(edges.data(), count)) {
    cells = std::clamp(std::bit_ceil(kCellsPerEdge * count), kFewestCells, kMostCells);
    // A cell costs about as much to set up as it saves on an element.
    cells = std::min(cells, std::bit_ceil(elements + 1));
    constexpr double kLargest = std::numeric_limits<double>::max();
    origin = std::clamp(edges.front(), -kLargest, kLargest);
    scale = static_cast<double>(cells) / (std::clamp(edges.back(), -kLargest, kLargest) - origin);
    if (!std::isfinite(scale)) scale = 0.0;
    last_cell = static_cast<double>(cells - 1);
  }

  // Each edge fills the cells behind its own, up to that of the next, by whole runs: what they
  // overshoot is the next edge's to fill.
  before.resize(cells + kFilledCells);
  std::size_t most = 0, in_cell = 0;
  std::size_t cell = count > 0 ? static_cast<std::size_t>(CellOf(edges[0])) : 0;
  for (std::size_t k = 0; k < count; ++k) {
    const std::size_t next =
        k + 1 < count ? static_cast<std::size_t>(CellOf(edges[k + 1])) : cells - 1;
    for (std::size_t first = cell + 1; first <= next; first += kFilledCells) {
      std::fill_n(&before[first], kFilledCells, static_cast<std::uint32_t>(k + 1));
    }
    most = std::max(most, ++in_cell);
    in_cell = next == cell ? in_cell : 0;
    cell = next;
  }
  first_step = std::bit_floor(most);
  edges.insert(edges.end(), first_step, std::numeric_limits<double>::quiet_NaN());
}

}  // namespace vela::kernel
#endif

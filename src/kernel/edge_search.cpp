#include "kernel/edge_search.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

namespace vela::kernel {
namespace {

constexpr std::int64_t kUlps = 4;
constexpr std::size_t kFewestCells = 256;
constexpr std::size_t kMostCells = 1 << 16;
constexpr std::size_t kCellsPerEdge = 8;

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

// False when there is a NaN.
bool Ascends(std::span<const double> edges) {
  bool ascends = edges.front() == edges.front();
  for (std::size_t i = 1; i < edges.size(); ++i) ascends &= edges[i - 1] <= edges[i];
  return ascends;
}

}  // namespace

EdgeSearch::EdgeSearch(std::span<const double> ascending, std::size_t elements) {
  const std::size_t count = ascending.size();
  edges.resize(count);
  std::transform(ascending.begin(), ascending.end(), edges.begin(), LeastEqual);

  std::size_t cells = 1;
  if (count > 0 && Ascends(edges)) {
    cells = std::clamp(std::bit_ceil(kCellsPerEdge * count), kFewestCells, kMostCells);
    // A cell costs about as much to set up as it saves on an element.
    cells = std::min(cells, std::bit_ceil(elements + 1));
    constexpr double kLargest = std::numeric_limits<double>::max();
    origin = std::clamp(edges.front(), -kLargest, kLargest);
    scale = static_cast<double>(cells) / (std::clamp(edges.back(), -kLargest, kLargest) - origin);
    if (!std::isfinite(scale)) scale = 0.0;
    last_cell = static_cast<double>(cells - 1);
  }

  // Counted one behind their cell, the edges add up to those before each.
  before.resize(cells + 1);
  std::uint32_t most = 1;
  for (const double edge : edges) {
    most = std::max(most, ++before[static_cast<std::size_t>(CellOf(edge)) + 1]);
  }
  std::partial_sum(before.begin(), before.end(), before.begin());
  first_step = std::bit_floor(std::size_t{most});
  edges.insert(edges.end(), first_step, std::numeric_limits<double>::quiet_NaN());
}

}  // namespace vela::kernel

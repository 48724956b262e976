#include "kernel/edge_search.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace vela::kernel {
namespace {

constexpr std::int64_t kUlps = 4;
constexpr std::size_t kFewestCells = 256;
constexpr std::size_t kMostCells = 1 << 16;
constexpr std::size_t kCellsPerEdge = 8;
// A cell costs about as much to set up as it saves on a few elements.
constexpr std::size_t kElementsPerCell = 2;

// The least value that counts as equal to an edge. As integers, the bits of doubles step through
// neighbouring values, away from zero.
double LeastEqual(double edge) {
  if (!std::isfinite(edge)) return edge;
  const auto magnitude = std::bit_cast<std::int64_t>(std::fabs(edge));
  if (edge > 0.0 && magnitude >= kUlps) return std::bit_cast<double>(magnitude - kUlps);
  const std::int64_t below = edge > 0.0 ? kUlps - magnitude : magnitude + kUlps;
  const double least = -std::bit_cast<double>(below);
  return std::isfinite(least) ? least : -std::numeric_limits<double>::max();
}

bool Ascends(std::span<const double> edges) {
  return std::none_of(edges.begin(), edges.end(), [](double edge) { return std::isnan(edge); }) &&
         std::is_sorted(edges.begin(), edges.end());
}

}  // namespace

EdgeSearch::EdgeSearch(std::span<const double> ascending, std::size_t elements) {
  const std::size_t count = ascending.size();
  edges.resize(count);
  std::transform(ascending.begin(), ascending.end(), edges.begin(), LeastEqual);

  std::size_t cells = 1;
  if (count > 0 && Ascends(edges)) {
    cells = std::clamp(std::bit_ceil(kCellsPerEdge * count), kFewestCells, kMostCells);
    cells = std::min(cells, std::bit_floor(elements / kElementsPerCell + 1));
    constexpr double kLargest = std::numeric_limits<double>::max();
    origin = std::clamp(edges.front(), -kLargest, kLargest);
    scale = static_cast<double>(cells) / (std::clamp(edges.back(), -kLargest, kLargest) - origin);
    if (!std::isfinite(scale)) scale = 0.0;
    last_cell = static_cast<double>(cells - 1);
  }

  std::vector<std::uint32_t> in_cell(cells);
  for (const double edge : edges) ++in_cell[static_cast<std::size_t>(CellOf(edge))];
  before.reserve(cells);
  std::uint32_t passed = 0;
  for (const std::uint32_t own : in_cell) {
    before.push_back(passed);
    passed += own;
  }
  first_step = std::bit_floor(std::size_t{*std::max_element(in_cell.begin(), in_cell.end())});
  edges.insert(edges.end(), first_step, std::numeric_limits<double>::quiet_NaN());
}

}  // namespace vela::kernel

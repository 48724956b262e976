#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vela::kernel {

/// Tells how many of some ascending edges an element has reached. An even grid of cells is laid
/// over the edges; a cell knows how many edges lie before it, which leaves only its own to be
/// compared.
struct EdgeSearch {
  double origin = 0.0;                ///< where cell 0 begins
  double scale = 0.0;                 ///< cells per unit
  double last_cell = 0.0;             ///< highest cell number
  std::vector<std::uint32_t> before;  ///< for each cell, the number of edges before it
  std::vector<double> edges;   ///< the least value that reaches each edge, then NaN as padding
  std::size_t first_step = 0;  ///< first step of the search among the edges of one cell

  /// Searches for `elements` elements are to follow: the more, the finer the grid may be. Edges
  /// that do not ascend, or hold NaN, give counts that mean nothing but never exceed their
  /// number.
  EdgeSearch(std::span<const double> ascending, std::size_t elements);

  /// The cell of x; never falls as x rises, which is all that the search relies on.
  std::int32_t CellOf(double x) const {
    const double position = (x - origin) * scale;
    const double above = position > 0.0 ? position : 0.0;
    return static_cast<std::int32_t>(above < last_cell ? above : last_cell);
  }

  /// The number of edges that x, in that cell, has reached; 0 for NaN. The step to begin with is
  /// first_step: a caller that knows it to be constant saves the loop.
  std::size_t Reached(double x, std::int32_t cell, std::size_t step) const {
    std::size_t reached = before[static_cast<std::size_t>(cell)];
    for (; step > 0; step /= 2) {
      reached += edges[reached + step - 1] <= x ? step : 0;
    }
    return reached;
  }
};

}  // namespace vela::kernel

#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "kernel/frequency_filter.h"

namespace vela::kernel {

/// The response of a filter over the frequencies of a matrix, by what depends on the row and what
/// depends on the column: the square of a frequency's distance from zero is the sum of a square of
/// either, and a Gaussian the product of a factor of either.
struct FrequencyMask {
  enum class Kind { kIdeal, kButterworth, kGaussian };

  /// Of L(r, c) at one cut-off c.
  struct Edge {
    double limit = 0;                 ///< ideal: the largest r^2 that passes
    double scale = 0;                 ///< Butterworth: 1 / c^2
    std::vector<double> row_factors;  ///< Gaussian; zeros for the other kinds
    std::vector<double> col_factors;
  };

  /// For the rows' frequencies in the order given and the columns' from 0 to cols / 2, padded to
  /// any vector's end. Throws std::bad_alloc.
  FrequencyMask(const FrequencyFilter& filter, std::span<const std::size_t> row_frequencies,
                std::size_t cols);

  Kind kind;
  unsigned order;
  bool has_lower, has_upper;  ///< whether an edge takes part
  bool is_stop;               ///< the response is 1 less that of the edges
  Edge lower, upper;
  std::vector<double> row_squares, col_squares;
  double scale;  ///< also to multiply with: undoes twice the growth of a transform and its inverse
};

}  // namespace vela::kernel

#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernel/element_ranks.h"

namespace vela::kernel {

/// Medians of windows of 8-bit elements by histograms of columns, in two steps of 16 values: a
/// window is the sum of some columns' histograms, so a step to the next window costs the same for
/// any size.
template <class T>
requires(sizeof(T) == 1) class HistogramMedian {
 public:
  /// The largest side of a window: counts have 15 bits.
  static constexpr std::size_t kMostSide = 181;

  /// For up to so many rows at a time. Throws std::bad_alloc.
  HistogramMedian(std::size_t side, std::size_t rows);

  /// out becomes the medians of the windows with their corners in `count` rows and the first `cols`
  /// columns of the extended rows.
  void Filter(const T* const* rows, std::size_t count, std::size_t cols, T* out);

 private:
  std::size_t side_;
  std::vector<std::int16_t> histograms_;
  std::vector<const std::uint8_t*> rows_;
  std::vector<std::uint8_t> high_;  // the second elements of means
};

}  // namespace vela::kernel

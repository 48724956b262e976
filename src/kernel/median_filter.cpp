#include "kernel/median_filter.h"

#include <algorithm>
#include <limits>
#include <stdexcept>

#include "kernel/padded_bands.h"
#include "kernel/rank_median.h"
#include "kernel/weighted_median.h"

namespace vela::kernel {
namespace {

template <class T>
void FilterByRank(MatrixSpan<T> x, std::size_t size, EdgeMode mode) {
  PaddedBands<T> bands(x, WindowReach::Square(size, mode), T(), std::max<std::size_t>(128, size));
  RankMedian<T> medians(size, bands.MaxCount(), x.cols);
  while (bands.Next()) {
    medians.Filter(bands.Rows(), bands.Count(), x.cols, x.data + bands.First() * x.cols);
  }
}

}  // namespace

template <Element T>
bool MedianFilter(MatrixSpan<T> x, std::size_t size, EdgeMode mode) {
  const WindowReach reach = WindowReach::Square(size, mode);
  if (size == 0 || !reach.Fits(x.rows, x.cols)) return false;
  if (x.IsEmpty()) return true;
  if (size > std::numeric_limits<std::uint32_t>::max()) {
    throw std::length_error("window of a median filter");
  }
  if (size / 2 > std::min(x.rows, x.cols)) {
    WeightedMedian<T>(x, size, mode).Filter(x);
  } else {
    FilterByRank(x, size, mode);
  }
  return true;
}

#define VELA_KERNEL_INSTANTIATE(T) template bool MedianFilter(MatrixSpan<T>, std::size_t, EdgeMode);
VELA_KERNEL_FOR_MATRIX_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

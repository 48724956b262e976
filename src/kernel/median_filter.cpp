#include "kernel/median_filter.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

#include "kernel/histogram_median.h"
#include "kernel/network_median.h"
#include "kernel/padded_bands.h"
#include "kernel/rank_median.h"
#include "kernel/transpose.h"
#include "kernel/weighted_median.h"

namespace vela::kernel {
namespace {

template <class T>
void FilterByRank(MatrixSpan<T> x, std::size_t size, EdgeMode mode) {
  constexpr std::size_t kLeastRows = 128;
  PaddedBands<T> bands(x, WindowReach::Square(size, mode), T(), std::max(kLeastRows, size));
  RankMedian<T> medians(size, bands.MaxCount(), x.cols);
  while (bands.Next()) {
    medians.Filter(bands.Rows(), bands.Count(), x.cols, x.data + bands.First() * x.cols);
  }
}

template <class T>
void FilterByNetwork(MatrixSpan<T> x, std::size_t size, EdgeMode mode) {
  PaddedBands<T> bands(x, WindowReach::Square(size, mode));
  RankMedian<T> medians(size, bands.MaxCount(), x.cols);  // where there are NaNs
  while (bands.Next()) {
    T* const out = x.data + bands.First() * x.cols;
    if (!NetworkMedian<T>(bands.Rows(), bands.Count(), x.cols, size, out)) {
      medians.Filter(bands.Rows(), bands.Count(), x.cols, out);
    }
  }
}

template <class T>
void FilterByHistogram(MatrixSpan<T> x, std::size_t size, EdgeMode mode) {
  constexpr std::size_t kLeastRows = 128;  // histograms start anew with each band
  PaddedBands<T> bands(x, WindowReach::Square(size, mode), T(), std::max(kLeastRows, 2 * size));
  HistogramMedian<T> medians(size, bands.MaxCount());
  while (bands.Next()) {
    medians.Filter(bands.Rows(), bands.Count(), x.cols, x.data + bands.First() * x.cols);
  }
}

// The quickest way that does not take a window beyond twice the matrix.
template <class T>
void FilterInside(MatrixSpan<T> x, std::size_t size, EdgeMode mode) {
  if (HasMedianNetwork(size)) return FilterByNetwork(x, size, mode);
  if constexpr (sizeof(T) == 1) {
    if (size <= HistogramMedian<T>::kMostSide) return FilterByHistogram(x, size, mode);
  }
  FilterByRank(x, size, mode);
}

// Its cost grows with the rows times the whole matrix, so that tall matrices are laid on their
// side; the windows are squares.
template <class T>
void FilterByWeight(MatrixSpan<T> x, std::size_t size, EdgeMode mode) {
  if (x.rows <= x.cols) return WeightedMedian<T>(x, size, mode).Filter(x);
  using W = Word<sizeof(T)>;
  const auto words = [](MatrixSpan<T> matrix) {
    return MatrixSpan<W>(reinterpret_cast<W*>(matrix.data), matrix.rows, matrix.cols);
  };
  std::vector<T> elements(x.Size());
  const MatrixSpan<T> turned(elements.data(), x.cols, x.rows);
  Transpose<W>(words(x), words(turned));
  WeightedMedian<T>(turned, size, mode).Filter(turned);
  Transpose<W>(words(turned), words(x));
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
    FilterByWeight(x, size, mode);
  } else {
    FilterInside(x, size, mode);
  }
  return true;
}

#define VELA_KERNEL_INSTANTIATE(T) template bool MedianFilter(MatrixSpan<T>, std::size_t, EdgeMode);
VELA_KERNEL_FOR_MATRIX_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

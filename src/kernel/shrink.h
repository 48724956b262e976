#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <span>
#include <vector>

#include "kernel/complex_parts.h"
#include "kernel/element_types.h"
#include "kernel/matrix_span.h"
#include "kernel/missing.h"

namespace vela::kernel {

/// What a block of elements is reduced to.
enum class BlockStatistic {
  kSum = 0,
  kMean = 1,
  kMinimum = 2,
  kMaximum = 3,
  kMedian = 4,
  kCount = 5,  ///< of the elements that are not missing
};

/// out(i, j) becomes the statistic of block (i, j) of x: out is ceil(rows / row_factor) x
/// ceil(cols / col_factor) for factors of at least 1 and does not overlap x. Missing elements are
/// skipped: a block of nothing else is missing, and its count 0. A NaN makes sum and mean NaN; it
/// is the minimum and maximum where it comes first of the elements that are not missing, row by
/// row, and is passed over elsewhere; the median takes it as larger than any number, and is the
/// mean of the middle two of an even count. Sums of more than 64 elements are compensated for
/// rounding as Sum is; one that leaves the range of doubles is added row by row. The mean is the
/// sum divided by the count. One pass; the median copies a block aside (std::bad_alloc leaves out
/// as it was). Not for 64-bit integers.
template <Element T>
void Shrink(MatrixSpan<const T> x, std::size_t row_factor, std::size_t col_factor,
            BlockStatistic statistic, MatrixSpan<double> out);

namespace detail {

template <Complex Z>
bool IsLess(const Z& a, const Z& b) {
  return (a < b) != 0;
}

/// The order of SortComplex.
template <Complex Z>
bool SortsBefore(const Z& a, const Z& b) {
  const auto is_nan = [](const Z& z) { return std::isnan(z.m_re) || std::isnan(z.m_im); };
  if (is_nan(a) || is_nan(b)) return !is_nan(a) && is_nan(b);
  return IsLess(a, b);
}

template <Complex Z>
Z Median(std::vector<Z>& values) {
  const auto upper = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), upper, values.end(), SortsBefore<Z>);
  if (values.size() % 2 != 0) return *upper;
  const Z lower = *std::max_element(values.begin(), upper, SortsBefore<Z>);
  return Z(lower.m_re / 2 + upper->m_re / 2, lower.m_im / 2 + upper->m_im / 2);
}

/// The statistic of values that are not missing, which may change their order.
template <Complex Z>
Z Reduce(std::vector<Z>& values, BlockStatistic statistic) {
  const auto count = static_cast<double>(values.size());
  if (statistic == BlockStatistic::kCount) return Z(count, 0);
  if (values.empty()) return Z(kMissing, kMissing);
  switch (statistic) {
    case BlockStatistic::kMinimum:
      return *std::min_element(values.begin(), values.end(), IsLess<Z>);
    case BlockStatistic::kMaximum:
      return *std::max_element(values.begin(), values.end(), IsLess<Z>);
    case BlockStatistic::kMedian:
      return Median(values);
    default:
      break;
  }
  const Z sum = Sum(std::span<const Z>(values));
  return statistic == BlockStatistic::kSum ? sum : Z(sum.m_re / count, sum.m_im / count);
}

}  // namespace detail

/// The same for complex elements, ordered by their own order for the extremes and the median, for
/// which one with a NaN part comes last. Copies a block aside: std::bad_alloc leaves out as it was.
template <Complex Z>
void Shrink(MatrixSpan<const Z> x, std::size_t row_factor, std::size_t col_factor,
            BlockStatistic statistic, MatrixSpan<Z> out) {
  std::vector<Z> values;
  values.reserve(std::min(row_factor, x.rows) * std::min(col_factor, x.cols));
  for (std::size_t i = 0; i < out.rows; ++i) {
    const std::size_t row = i * row_factor;
    const std::size_t row_end = row + std::min(row_factor, x.rows - row);
    for (std::size_t j = 0; j < out.cols; ++j) {
      const std::size_t col = j * col_factor;
      const std::size_t cols = std::min(col_factor, x.cols - col);
      values.clear();
      for (std::size_t r = row; r < row_end; ++r) {
        std::ranges::remove_copy_if(x.Row(r).subspan(col, cols), std::back_inserter(values),
                                    IsMissing<Z>);
      }
      out(i, j) = detail::Reduce(values, statistic);
    }
  }
}

}  // namespace vela::kernel

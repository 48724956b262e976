#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <span>
#include <type_traits>
#include <vector>

#include "kernel/complex_parts.h"
#include "kernel/difference.h"
#include "kernel/element_types.h"
#include "kernel/matrix_span.h"

namespace vela::kernel {

/// As LaggedDifference of real elements.
template <Complex Z>
void LaggedDifference(std::span<const Z> x, std::size_t lag, std::span<Z> result) {
  for (std::size_t i = 0; i < result.size(); ++i) {
    const bool missing = IsMissing(x[i]) || IsMissing(x[i + lag]);
    result[i] = missing ? Z{kMissing, kMissing} : x[i + lag] - x[i];
  }
}

namespace detail {

/// The differences of that order of elements a lag apart: order * lag fewer than x has, and more
/// than none.
template <class T>
void RepeatedDifference(std::span<const T> x, std::size_t lag, std::size_t order,
                        std::vector<T>& scratch, std::span<T> out) {
  if (order == 0) {
    std::copy(x.begin(), x.end(), out.begin());
    return;
  }
  if (order > 1) {
    scratch.resize(x.size() - lag);
    LaggedDifference<T>(x, lag, scratch);
    for (std::size_t step = 2; step < order; ++step) {
      LaggedDifference<T>(scratch, lag, std::span(scratch).first(scratch.size() - lag));
      scratch.resize(scratch.size() - lag);
    }
    x = scratch;
  }
  LaggedDifference<T>(x, lag, out);
}

}  // namespace detail

/// The differences of that order between the elements of each row, of which the result has `order`
/// fewer, or of each column. Every step is stored as an element: differences of integers saturate
/// at each. Missing values spread to all they enter; so does NaN. The order is less than the length
/// of a row (column); the result may start where x starts, otherwise they do not overlap. Time of
/// that many passes, scratch of a row, or for columns of x, from order 2 on; throws std::bad_alloc
/// with nothing stored.
template <class T>
requires Element<T> || Complex<T>
void MatrixDifference(MatrixSpan<const T> x, std::size_t order, bool by_rows, MatrixSpan<T> out) {
  std::vector<T> scratch;
  if (!by_rows)
    return detail::RepeatedDifference<T>(x.Values(), x.cols, order, scratch, out.Values());
  if (order > 1) scratch.reserve(x.cols);
  for (std::size_t row = 0; row < x.rows; ++row) {
    detail::RepeatedDifference<T>(x.Row(row), 1, order, scratch, out.Row(row));
  }
}

}  // namespace vela::kernel

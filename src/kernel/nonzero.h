#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

#include "kernel/complex_parts.h"
#include "kernel/element_types.h"
#include "kernel/matrix_span.h"

namespace vela::kernel {

// One result, 1 or 0, for each row of x, or for each column: result.size() is x.rows or x.cols.
// With no elements in a row or column, all are non-zero and none is.
//
// Integers are zero when they are 0, whatever the tolerance. A floating or complex element is zero
// for AllNonZero when tolerance > |x|, and non-zero for AnyNonZero when |x| > tolerance, so that
// one at the tolerance counts as either member likes it best. Missing values are the numbers they
// are; NaN is non-zero to the first and zero to the second, and so is everything with a NaN as
// tolerance. Each row is left at the first element that decides it, columns once all are decided.
// No allocation.

template <Element T>
void AllNonZero(MatrixSpan<const T> x, bool by_rows, double tolerance, std::span<double> result);
template <Element T>
void AnyNonZero(MatrixSpan<const T> x, bool by_rows, double tolerance, std::span<double> result);

namespace detail {

// Sets the result of each row or column with an element that decides it.
template <Complex Z, class Decides>
void DecideComplex(MatrixSpan<const Z> x, bool by_rows, double decided, std::span<double> result,
                   Decides decides) {
  std::fill(result.begin(), result.end(), 1 - decided);
  for (std::size_t row = 0; row < x.rows; ++row) {
    for (std::size_t col = 0; col < x.cols; ++col) {
      double& entry = result[by_rows ? row : col];
      if (entry != decided && decides(x(row, col).GetAmplitude())) entry = decided;
    }
  }
}

}  // namespace detail

template <Complex Z>
void AllNonZero(MatrixSpan<const Z> x, bool by_rows, double tolerance, std::span<double> result) {
  detail::DecideComplex(x, by_rows, 0, result, [=](double modulus) { return tolerance > modulus; });
}

template <Complex Z>
void AnyNonZero(MatrixSpan<const Z> x, bool by_rows, double tolerance, std::span<double> result) {
  detail::DecideComplex(x, by_rows, 1, result, [=](double modulus) { return modulus > tolerance; });
}

}  // namespace vela::kernel

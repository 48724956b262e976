#pragma once

#include <cstddef>

#include "kernel/complex_parts.h"
#include "kernel/convert.h"
#include "kernel/element_types.h"
#include "kernel/matrix_span.h"
#include "kernel/missing.h"

namespace vela::kernel {

namespace detail {

/// a * d - b * c, missing where one of them is.
template <class T>
T CrossTerm(T a, T b, T c, T d) {
  const bool missing = IsMissing(a) || IsMissing(b) || IsMissing(c) || IsMissing(d);
  if constexpr (Complex<T>) {
    return missing ? T{kMissing, kMissing} : a * d - b * c;
  } else {
    const double term = static_cast<double>(a) * static_cast<double>(d) -
                        static_cast<double>(b) * static_cast<double>(c);
    return ConvertElement<T>(missing ? kMissing : term);
  }
}

}  // namespace detail

/// The cross products of the vectors of three in the rows of a and b, which then have 3 columns, or
/// in their columns; a, b and out have one shape and out may be either. Taken of doubles and stored
/// by ConvertElement; an element is missing when one that it is made of is.
template <class T>
requires Element<T> || Complex<T>
void Cross(MatrixSpan<const T> a, MatrixSpan<const T> b, bool by_rows, MatrixSpan<T> out) {
  const std::size_t count = by_rows ? a.rows : a.cols;
  const std::size_t vector = by_rows ? 3 : 1, element = by_rows ? 1 : a.cols;
  for (std::size_t i = 0; i < count; ++i) {
    const auto at = [&](const T* data, std::size_t k) { return data[i * vector + k * element]; };
    const T x[] = {at(a.data, 0), at(a.data, 1), at(a.data, 2)};
    const T y[] = {at(b.data, 0), at(b.data, 1), at(b.data, 2)};
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t next = (k + 1) % 3, last = (k + 2) % 3;
      out.data[i * vector + k * element] = detail::CrossTerm(x[next], x[last], y[next], y[last]);
    }
  }
}

}  // namespace vela::kernel

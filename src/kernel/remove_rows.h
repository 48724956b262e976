#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "kernel/complex_parts.h"
#include "kernel/find.h"
#include "kernel/matrix_span.h"
#include "kernel/missing.h"

namespace vela::kernel {

struct RemovedRows {
  std::size_t kept = 0;
  std::size_t removed = 0;
  std::ptrdiff_t first_partial = -1;  ///< the first row of which some but not all are missing
};

namespace detail {

/// The first missing element at or after `start`, or x.size().
template <class T>
std::size_t FindMissing(std::span<const T> x, std::size_t start) {
  if constexpr (std::same_as<T, double>) {
    // Positions are 32-bit ones: a part at a time.
    constexpr std::size_t kPart = std::size_t{1} << 31;
    for (; start < x.size(); start += std::min(kPart, x.size() - start)) {
      const std::span<const double> part = x.subspan(start, std::min(kPart, x.size() - start));
      std::uint32_t found = 0;
      const FindScope first{.first_only = true};
      if (FindEqual(part, kMissing, 0, first, std::span(&found, 1)) > 0) return start + found;
    }
    return x.size();
  } else {
    const auto rest = x.subspan(start);
    return start +
           static_cast<std::size_t>(std::ranges::find_if(rest, IsMissing<T>) - rest.begin());
  }
}

}  // namespace detail

/// Removes the rows of which every element is missing and, without only_all, those of which one is;
/// the others close up in their order, and what x holds behind them is unspecified. The numbers of
/// the removed rows, ascending, go to the front of `removed`, which has room for x.rows (at most
/// 2^32). For doubles and complex elements. One pass that stops only at missing elements, no
/// allocation.
template <class T>
requires std::same_as<T, double> || Complex<T> RemovedRows
RemoveRowsWithMissing(MatrixSpan<T> x, bool only_all, std::span<std::uint32_t> removed) {
  RemovedRows result;
  if (x.cols == 0) {
    result.kept = x.rows;
    return result;
  }
  // Rows begin .. end - 1 stay.
  const auto keep = [&](std::size_t begin, std::size_t end) {
    if (begin != result.kept && begin != end) {
      std::memmove(static_cast<void*>(x.Row(result.kept).data()), x.Row(begin).data(),
                   (end - begin) * x.cols * sizeof(T));
    }
    result.kept += end - begin;
  };
  const std::span<const T> elements = x.Values();
  std::size_t begin = 0;  // of the rows to keep that have not moved yet
  for (std::size_t row = 0; row < x.rows; ++row) {
    row = detail::FindMissing(elements, row * x.cols) / x.cols;
    if (row >= x.rows) break;
    const bool all = std::ranges::all_of(x.Row(row), IsMissing<T>);
    if (!all && result.first_partial < 0) result.first_partial = static_cast<std::ptrdiff_t>(row);
    if (!all && only_all) continue;
    keep(begin, row);
    begin = row + 1;
    removed[result.removed++] = static_cast<std::uint32_t>(row);
  }
  keep(begin, x.rows);
  return result;
}

}  // namespace vela::kernel

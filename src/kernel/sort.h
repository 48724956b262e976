#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <span>
#include <utility>
#include <vector>

#include "kernel/element_types.h"
#include "kernel/missing.h"

namespace vela::kernel {

/// Sorts in place. NaN comes last in either order; -0.0 and 0.0 are both kept, -0.0 being the less;
/// the missing value sorts as the number it is. O(n log n) whatever the data; no scratch memory.
template <Element T>
void Sort(std::span<T> values, bool ascending);

/// The memory that SortWithIndices of so many elements needs, 12 bytes each.
struct SortScratch {
  /// Throws std::bad_alloc.
  explicit SortScratch(std::size_t count);
  std::unique_ptr<std::int64_t[]> packed;
  std::unique_ptr<std::uint32_t[]> moved;
};

/// As Sort, and indices[k] follows the element it belongs to. Stable in either order: equal values
/// (-0.0 and 0.0 among them), and NaNs, keep the order they had. indices.size() must be
/// values.size(), at most 2^32, else std::invalid_argument. O(n log n). The scratch is for at least
/// as many elements; without one it is made here.
template <Element T>
void SortWithIndices(std::span<T> values, std::span<std::uint32_t> indices, bool ascending,
                     const SortScratch& scratch);
template <Element T>
void SortWithIndices(std::span<T> values, std::span<std::uint32_t> indices, bool ascending) {
  SortWithIndices(values, indices, ascending, SortScratch(values.size()));
}

/// Stable sort by any strict weak ordering; indices, when not empty, follow the elements and must
/// be as many, at most 2^32. O(n log n); scratch no more than a copy of both. When memory runs out
/// (std::bad_alloc) nothing has changed.
template <class T, class Less>
void SortBy(std::span<T> values, std::span<std::uint32_t> indices, Less less) {
  if (indices.empty()) {
    std::stable_sort(values.begin(), values.end(), less);
    return;
  }
  std::vector<std::uint32_t> order(values.size());
  std::iota(order.begin(), order.end(), 0u);
  std::stable_sort(order.begin(), order.end(),
                   [&](std::uint32_t a, std::uint32_t b) { return less(values[a], values[b]); });
  const std::vector<T> old_values(values.begin(), values.end());
  const std::vector<std::uint32_t> old_indices(indices.begin(), indices.end());
  for (std::size_t k = 0; k < order.size(); ++k) {
    values[k] = old_values[order[k]];
    indices[k] = old_indices[order[k]];
  }
}

/// Swaps the elements that is_missing picks to the front, or to the back, and returns how many
/// there are; indices, when not empty, are swapped alike and must be as many. The others do not
/// keep their order: each missing element trades places with the nearest element of the other
/// side's end. One pass, no allocation.
template <class T, class Predicate>
std::size_t PartitionMissing(std::span<T> values, std::span<std::uint32_t> indices, bool to_front,
                             Predicate is_missing) {
  const std::size_t n = values.size();
  std::size_t count = 0;
  for (std::size_t step = 0; step < n; ++step) {
    const std::size_t k = to_front ? step : n - 1 - step;
    if (!is_missing(values[k])) continue;
    const std::size_t to = to_front ? count : n - 1 - count;
    std::swap(values[k], values[to]);
    if (!indices.empty()) std::swap(indices[k], indices[to]);
    ++count;
  }
  return count;
}

template <class T>
std::size_t PartitionMissing(std::span<T> values, std::span<std::uint32_t> indices, bool to_front) {
  return PartitionMissing(values, indices, to_front, [](T value) { return IsMissing(value); });
}

}  // namespace vela::kernel

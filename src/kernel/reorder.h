#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vela::kernel {

/// values[k] becomes the old values[order[k]]; true when order is a permutation. An entry past the
/// end stops at once; one that repeats is found only at the end. In both cases the result is false
/// and the elements up to there have already changed. order.size() must be values.size(), else
/// false and nothing changes. Scratch: a copy of the values and a bit each.
template <class T>
bool Reorder(std::span<T> values, std::span<const std::uint32_t> order) {
  const std::size_t n = values.size();
  if (order.size() != n) return false;
  const std::vector<T> old(values.begin(), values.end());
  std::vector<bool> taken(n);
  for (std::size_t k = 0; k < n; ++k) {
    const std::size_t from = order[k];
    if (from >= n) return false;
    values[k] = old[from];
    taken[from] = true;
  }
  for (const bool was_taken : taken) {
    if (!was_taken) return false;
  }
  return true;
}

}  // namespace vela::kernel

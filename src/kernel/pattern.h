#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// A block of levels from, from + step, ... with each level repeat_each times, and the block
/// repeat_total times. Both repeats are at least 1.
struct Pattern {
  double from;
  double step;
  std::int32_t repeat_each;
  std::int32_t repeat_total;
};

/// The number of values of a pattern whose levels go up to `to`, counted as by SequenceCount.
/// Nothing when the levels cannot be counted or no int can hold the result.
std::optional<std::int32_t> PatternSize(const Pattern& pattern, double to);

/// Writes a pattern of `size` values, of size / repeat_each / repeat_total levels (whole division),
/// to the front of x as far as it fits, stored by ConvertElement. Returns how many elements were
/// written; the others are left as they are.
template <Element T>
std::size_t FillPattern(std::span<T> x, const Pattern& pattern, std::uint32_t size);

}  // namespace vela::kernel

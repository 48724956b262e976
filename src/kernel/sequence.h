#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// How many values the sequence from, from + increment, ... up to `to` has. A step of up to 1e-10
/// short of `to` counts as reaching it; 0 when the increment leads away from `to`. Nothing when no
/// int can hold the count: increment 0, NaN, or too many values.
std::optional<std::int32_t> SequenceCount(double from, double to, double increment);

/// The last of the count >= 1 values: `to` itself when it lies within 1e-10 steps of that value,
/// else from + (count - 1) * increment.
double SequenceLast(double from, double to, double increment, std::int32_t count);

/// x[i] = from + i * increment and `last` in the last element, stored by ConvertElement. Each value
/// is computed from i, not accumulated. x has at most 2^31 - 1 elements.
template <Element T>
void FillSequence(std::span<T> x, double from, double increment, double last);

}  // namespace vela::kernel

#pragma once

#include <concepts>
#include <span>

namespace vela::kernel {

enum class Rounding {
  kCeil,
  kFloor,
  kFix,   ///< toward zero
  kRound  ///< to the nearest whole number, halves away from zero
};

/// out[i] = x[i] made whole, for every i; out has the size of x and is x or does not overlap it.
/// Missing values, infinities and NaN stay what they are, and so does the sign of a result of 0.
/// kRound decides by the fraction itself, which is exact, where adding a half first would take
/// 0.49999999999999994 to 1 and odd numbers beyond 2^52 to their neighbours. One pass, no
/// allocation.
template <std::floating_point T>
void RoundElements(std::span<const T> x, Rounding rounding, std::span<T> out);

}  // namespace vela::kernel

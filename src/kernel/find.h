#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// Where to look for matches and how many of them to take.
struct FindScope {
  std::size_t start = 0;
  std::size_t end = static_cast<std::size_t>(-1);  ///< one past the last index; cut at the size
  bool first_only = false;                         ///< stop at the first match
};

/// A unit of that decimal place: 10 to the power -digits, rounded once; 0 below the least double.
double DecimalUnit(int digits);

/// Finds the elements equal to value: |x - value| <= tolerance, or x == value for a tolerance of 0.
/// The missing value is a mark here, not a number: missing elements match a missing value only, and
/// a missing value matches them only, whatever the tolerance. Infinities equal themselves, NaN
/// equals nothing. Elements are compared as doubles. Returns the number of matches and writes their
/// indices, ascending, to the front of found; those that do not fit are counted only, so an empty
/// span counts. Slots behind the last index may be overwritten too. x holds at most 2^32 elements.
/// One pass, no allocation.
template <Element T>
std::size_t FindEqual(std::span<const T> x, double value, double tolerance, FindScope scope,
                      std::span<std::uint32_t> found);

/// Whether an element is missing.
bool HoldsMissing(std::span<const double> x);

/// As FindEqual, for the elements with low <= x <= high. Missing elements and NaN never match.
template <Element T>
std::size_t FindInRange(std::span<const T> x, double low, double high, FindScope scope,
                        std::span<std::uint32_t> found);

}  // namespace vela::kernel

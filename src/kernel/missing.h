#pragma once

#include <bit>
#include <concepts>
#include <cstdint>

namespace vela::kernel {

/// The double that stands for "no value here": an ordinary finite number of about -4e-301, compared
/// by value.
inline constexpr double kMissing = std::bit_cast<double>(std::uint64_t{0x81AA74FE1C132C0E});

/// True only for a double equal to kMissing. A float, even one widened from it, and an integer
/// never are: no other element type can hold the value.
template <class T>
constexpr bool IsMissing([[maybe_unused]] T value) {
  if constexpr (std::same_as<T, double>) {
    return value == kMissing;
  } else {
    return false;
  }
}

}  // namespace vela::kernel

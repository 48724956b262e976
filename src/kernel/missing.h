#pragma once

#include <bit>
#include <concepts>
#include <cstdint>
#include <tuple>
#include <type_traits>

namespace vela::kernel {

/// The double that stands for "no value here": an ordinary finite number of about -4e-301, compared
/// by value.
inline constexpr double kMissing = std::bit_cast<double>(std::uint64_t{0x81AA74FE1C132C0E});

/// The numbers that an element of several consists of: whoever defines such a type specialises this
/// as a tuple of pointers to those members which can be missing. Empty for every other type.
template <class T>
inline constexpr std::tuple<> kElementParts;

/// Whether the element is missing: only a double equal to kMissing is, and an element of several
/// numbers of which one is. A float, even one widened from it, and an integer never are: no other
/// element type can hold the value.
template <class T>
constexpr bool IsMissing([[maybe_unused]] const T& value) {
  if constexpr (std::same_as<T, double>) {
    return value == kMissing;
  } else if constexpr (std::is_arithmetic_v<T>) {
    return false;
  } else if constexpr (std::is_array_v<T>) {
    for (const auto& part : value) {
      if (IsMissing(part)) return true;
    }
    return false;
  } else {
    return std::apply([&](auto... part) { return (IsMissing(value.*part) || ...); },
                      kElementParts<T>);
  }
}

}  // namespace vela::kernel

// The in-band missing value: one particular double, written "NANUM" in text. It is not a NaN.
#pragma once

#include <bit>
#include <cstdint>

inline constexpr double kMissingValue = std::bit_cast<double>(std::uint64_t{0x81AA74FE1C132C0E});
inline constexpr const char* kMissingText = "NANUM";

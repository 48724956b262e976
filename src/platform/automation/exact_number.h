// Decimal fractions of 96 bits: what every integer type, VT_CY and VT_DECIMAL hold.
#pragma once

#if !defined(_WIN32)

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/automation.h"

namespace vela::platform {

__extension__ using Magnitude = unsigned __int128;

inline constexpr int kMaxScale = 28;
inline constexpr int kCurrencyScale = 4;
inline constexpr Magnitude kMaxMagnitude = (Magnitude{1} << 96) - 1;

// (-1)^negative * magnitude / 10^scale with magnitude up to kMaxMagnitude and scale 0 .. kMaxScale.
struct ExactNumber {
  bool negative = false;
  Magnitude magnitude = 0;
  int scale = 0;
};

ExactNumber ExactOf(std::int64_t value, int scale = 0);
ExactNumber ExactOf(std::uint64_t value);
ExactNumber ExactOf(const DECIMAL& value);
// digits (any number of '0' .. '9') / 10^scale, rounded half to even; nothing when it is too large.
std::optional<ExactNumber> ExactOf(bool negative, std::string_view digits, std::int64_t scale);
// The words of value except the one that lies under the type of a VARIANT.
void Store(const ExactNumber& number, DECIMAL& value);

// Each gives the result with as many digits after the point as it needs (sums: as the operands
// have), rounded half to even where 96 bits or a scale of 28 hold no more; nothing when it is too
// large. right of a division is not 0.
std::optional<ExactNumber> Add(const ExactNumber& left, const ExactNumber& right);
std::optional<ExactNumber> Multiply(const ExactNumber& left, const ExactNumber& right);
std::optional<ExactNumber> Divide(const ExactNumber& left, const ExactNumber& right);
ExactNumber Negate(ExactNumber number);
// Negative, 0 or positive as left is less than, equal to or greater than right.
int Compare(const ExactNumber& left, const ExactNumber& right);

// The number as a count of 10^-scale, rounded half to even; nothing beyond 96 bits.
std::optional<Magnitude> AtScale(const ExactNumber& number, int scale);
// The nearest double.
double ToReal(const ExactNumber& number);
// The shortest plain decimal form.
std::string Format(const ExactNumber& number);

}  // namespace vela::platform

#endif

// The numbers that tables are full of, read fast.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela::text {

// Reads a token that is an optional minus, one to eight digits, and perhaps a point with up to
// eight more. The value is the double nearest to it. False for anything else, and for a token whose
// first byte has not kPlainDecimalRoom bytes up to readable_end, up to which bytes are looked at.
bool ReadPlainDecimal(std::string_view token, const char* readable_end, double& value);

inline constexpr std::ptrdiff_t kPlainDecimalRoom = 24;

}  // namespace vela::text

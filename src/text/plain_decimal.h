// The numbers that tables are full of, read fast.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela::text {

// Reads a number at the start of the text: an optional minus, one to eight digits, and after a
// point up to eight more. The value is the double nearest to it. Returns the bytes read; 0 when
// the text begins otherwise, holds a longer number, or ends within kPlainDecimalRoom bytes.
std::size_t ReadPlainDecimal(std::string_view text, double& value);

inline constexpr std::size_t kPlainDecimalRoom = 24;

}  // namespace vela::text

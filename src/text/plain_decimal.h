// The numbers that tables are full of, read fast.
#pragma once

#include <string_view>

namespace vela::text {

// Reads a token of a text that is an optional minus, one to eight digits, and perhaps a point with
// up to eight more. The value is the double nearest to it. False for anything else, for a token
// that lies outside the text, and for one that begins in its last few bytes: what follows the token
// in the text is looked at too.
bool ReadPlainDecimal(std::string_view token, std::string_view text, double& value);

}  // namespace vela::text

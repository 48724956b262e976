// printf over checked arguments.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "frame/interface/call.h"

namespace vela::text {

// The text that C's printf makes of a format and its arguments, the same on every platform and in
// every locale. Throws std::invalid_argument where C would leave the outcome undefined: an argument
// that is missing or of another kind than its conversion, an unknown conversion, %n, a format that
// ends inside a conversion; and for a width or precision above kMostFormatSize; and
// std::length_error when the text would be longer than a string can be. Arguments left over are
// ignored.
//
//   d i u o x X c *   an integer. Without a length, and with h, hh or l, 32 bits are meant: a wider
//                     value must fit them, signed or unsigned. ll, I64, j, z and t mean 64 bits.
//   a e f g A E F G   a double or float; the length L changes nothing. NaN has no sign.
//   s                 a text, up to its first NUL
//   p                 a pointer or a text's address, in hexadecimal
std::string Format(std::string_view format,
                   std::span<const CTCExternalCallBuilder::Slot> arguments);

inline constexpr int kMostFormatSize = 1 << 24;

}  // namespace vela::text

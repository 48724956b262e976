// Shortening a text for display.
#pragma once

#include <string>
#include <string_view>

namespace vela::text {

enum class CutAt { kEnd, kInside };

// A text of more than most bytes, cut to at most so many with "..." in place of what was cut: at
// the end, or between a head and a tail of about the same size. No character is cut, so the result
// can be up to three bytes shorter at each cut. Below three bytes there is only the head. Requires
// text.size() > most.
std::string Shortened(std::string_view text, std::size_t most, CutAt cut);

}  // namespace vela::text

// Where lines end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vela::kernel {

/// Places that FindLineEnds may write behind the last position.
inline constexpr std::size_t kLineEndsSlack = 4;

/// Stores first + the position of every CR and every LF of the text, in order; a pair of them is
/// two positions. Returns the end of what was stored. ends has room for text.size() +
/// kLineEndsSlack.
std::uint32_t* FindLineEnds(std::string_view text, std::uint32_t first, std::uint32_t* ends);

}  // namespace vela::kernel

// Texts made of a text: a name for C source, and a shorter one for display.
#pragma once

#include <string>
#include <string_view>

namespace vela::text {

enum class MisfitCharacters { kUnderscore, kDrop };

// A C identifier from any text: every character that is no ASCII letter, digit or underscore
// becomes one underscore, or is dropped; a leading digit gets an underscore in front, and where
// nothing is left the name is one underscore.
std::string ValidCName(std::string_view text, MisfitCharacters misfits);

enum class CutAt { kEnd, kInside };

// A text of more than most bytes, cut to at most so many with "..." in place of what was cut: at
// the end, or between a head and a tail of about the same size. No character is cut, so the result
// can be up to three bytes shorter at each cut. Below three bytes there is only the head. Requires
// text.size() > most.
std::string Shortened(std::string_view text, std::size_t most, CutAt cut);

}  // namespace vela::text

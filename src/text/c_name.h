// Names for use in C source.
#pragma once

#include <string>
#include <string_view>

namespace vela::text {

enum class MisfitCharacters { kUnderscore, kDrop };

// A C identifier from any text: every character that is no ASCII letter, digit or underscore
// becomes one underscore, or is dropped; a leading digit gets an underscore in front, and where
// nothing is left the name is one underscore.
std::string ValidCName(std::string_view text, MisfitCharacters misfits);

}  // namespace vela::text

// Search and comparison by whole characters, with or without regard to case.
#pragma once

#include <cstddef>
#include <string_view>

namespace vela::host {

enum class CaseMatters : bool { kNo, kYes };

struct CharacterMatch {
  std::size_t position = std::string_view::npos;  // in bytes
  std::size_t size = 0;                           // bytes of the text that match
};

// The first match at or after start that begins and ends between characters of the text. Without
// regard to case, characters are compared as full case folding leaves them, so that one can match
// several, but not a part of several. Takes time in proportion to the lengths.
CharacterMatch FindCharacters(std::string_view text, std::string_view sub, std::size_t start,
                              CaseMatters case_matters);

// Below, at or above 0 as a comes before, with or after b by the order of the folded characters.
int CompareFolded(std::string_view a, std::string_view b);

}  // namespace vela::host

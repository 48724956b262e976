// Matching with wildcards.
#pragma once

#include <string_view>

namespace vela::text {

// Whether the whole text fits the pattern, in which * stands for any number of characters, ? for
// one character, and everything else for itself. Both are UTF-8; bytes that are not valid are
// characters of their own. Without regard to case, characters are equal when full case folding
// leaves the same of them; one is never equal to several, as ß would be to SS. Takes time in
// proportion to the sizes; see wildcard_pieces.h. Throws std::bad_alloc.
bool MatchesWildcards(std::string_view text, std::string_view pattern, bool case_sensitive = true);

}  // namespace vela::text

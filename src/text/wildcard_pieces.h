// Matching with wildcards piece by piece.
#pragma once

#include <string_view>

namespace vela::text {

// What MatchesWildcards tells, by searching for what stands between the *, each piece once. Takes
// more time than looking and going back does for most patterns, but never much more: linear but for
// pieces with a ? inside, which cost one step per 64 characters of theirs and character of the
// text. Throws std::bad_alloc.
bool MatchesPieces(std::string_view text, std::string_view pattern, bool case_sensitive);

}  // namespace vela::text

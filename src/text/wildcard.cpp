#include "text/wildcard.h"

#include "text/utf8_character.h"

namespace vela::text {

bool MatchesWildcards(std::string_view text, std::string_view pattern) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t at = 0, in_pattern = 0;
  // Where to go on when what follows the last * does not fit: with that * one character longer.
  std::size_t retry_at = 0, retry_pattern = kNone;
  while (at < text.size()) {
    if (in_pattern < pattern.size()) {
      const char expected = pattern[in_pattern];
      if (expected == '*') {
        retry_pattern = ++in_pattern;
        retry_at = at;
        if (in_pattern == pattern.size()) return true;
        continue;
      }
      if (expected == '?') {
        at += CharacterBytes(text.substr(at));
        ++in_pattern;
        continue;
      }
      if (expected == text[at]) {
        ++at;
        ++in_pattern;
        continue;
      }
    }
    if (retry_pattern == kNone) return false;
    retry_at += CharacterBytes(text.substr(retry_at));
    at = retry_at;
    in_pattern = retry_pattern;
  }
  return pattern.find_first_not_of('*', in_pattern) == kNone;
}

}  // namespace vela::text

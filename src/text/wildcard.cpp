#include "text/wildcard.h"

#include "frame/interface/string_utf8.h"
#include "text/utf8_character.h"
#include "text/wildcard_pieces.h"

namespace vela::text {
namespace {

bool IsAscii(char ch) { return static_cast<unsigned char>(ch) < 0x80; }
char LowerAscii(char ch) { return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch; }

// Whether an ASCII character and one beyond ASCII can be the same letter: k, as the Kelvin sign is,
// and s, as the long s is.
bool HasTwinBeyondAscii(char ch) { return LowerAscii(ch) == 'k' || LowerAscii(ch) == 's'; }

// The first characters of a text and a pattern, both of which have one.
struct Firsts {
  bool are_equal;
  std::size_t text_bytes = 1;
  std::size_t pattern_bytes = 1;
};

Firsts FirstsOf(std::string_view text, std::string_view pattern, bool case_sensitive) {
  const char ch = text[0], expected = pattern[0];
  if (IsAscii(ch) && IsAscii(expected)) {
    return {ch == expected || (!case_sensitive && LowerAscii(ch) == LowerAscii(expected))};
  }
  const std::string_view first = text.substr(0, CharacterBytes(text));
  const std::string_view wanted = pattern.substr(0, CharacterBytes(pattern));
  const bool may_be_equal = !case_sensitive && (!IsAscii(ch) || HasTwinBeyondAscii(ch)) &&
                            (!IsAscii(expected) || HasTwinBeyondAscii(expected));
  const bool are_equal =
      first == wanted ||
      (may_be_equal && CStringUTF8(first).CompareNoCase(CStringUTF8(wanted)) == 0);
  return {are_equal, first.size(), wanted.size()};
}

}  // namespace

bool MatchesWildcards(std::string_view text, std::string_view pattern, bool case_sensitive) {
  constexpr std::size_t kNone = std::string_view::npos;
  std::size_t at = 0, in_pattern = 0;
  // Where to go on when what follows the last * does not fit: with that * one character longer.
  std::size_t retry_at = 0, retry_pattern = kNone;
  // Going back is quick while it is rare.
  std::size_t patience = 16 * (text.size() + pattern.size());
  while (at < text.size()) {
    if (patience-- == 0) return MatchesPieces(text, pattern, case_sensitive);
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
      const Firsts firsts = FirstsOf(text.substr(at), pattern.substr(in_pattern), case_sensitive);
      if (firsts.are_equal) {
        at += firsts.text_bytes;
        in_pattern += firsts.pattern_bytes;
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

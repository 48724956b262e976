#include "host/text/match_start.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utf8.h>

#include "host/text/case_mapping.h"

namespace vela::host {
namespace {

bool IsPrefix(const Folded& folded, std::span<const char32_t> units) {
  const auto count = static_cast<std::size_t>(folded.count);
  return count <= units.size() &&
         std::equal(units.begin(), units.begin() + folded.count, folded.characters.begin());
}

// Calls use(character) for each one with which a match of the units can begin, one at least.
template <class Use>
void ForEachFirst(std::span<const char32_t> units, CaseMatters case_matters, Use&& use) {
  use(units.front());
  if (case_matters == CaseMatters::kYes) return;
  for (const auto& [first, character] : CharactersFoldedTo(units.front())) {
    if (IsPrefix(FoldCharacter(character), units)) use(character);
  }
}

}  // namespace

void MatchStart::ByteSet::Add(char byte) {
  const Bytes16 fill = Bytes16::Fill(byte);
  const auto same = [&](Bytes16 other) { return other.Equal(fill).HighBits() != 0; };
  if (std::none_of(bytes_.begin(), bytes_.end(), same)) bytes_.push_back(fill);
}

MatchStart::MatchStart(std::span<const char32_t> units, CaseMatters case_matters) {
  const auto rest = units.subspan(1);
  ForEachFirst(units, case_matters, [&](char32_t character) {
    if (character >= kInvalidByte) {
      // The byte may also be inside a character, from where on a text is not to be read.
      first_.AddBeyondAscii();
      second_.AddAll();
      return;
    }
    std::string bytes;
    utf8::unchecked::append(character, std::back_inserter(bytes));
    first_.Add(bytes[0]);
    if (bytes.size() > 1) return second_.Add(bytes[1]);
    if (rest.empty()) return second_.AddAll();
    ForEachFirst(rest, case_matters, [&](char32_t next) {
      if (next >= kInvalidByte) return second_.AddBeyondAscii();
      bytes.clear();
      utf8::unchecked::append(next, std::back_inserter(bytes));
      second_.Add(bytes[0]);
    });
  });
}

}  // namespace vela::host

#if defined(_WIN32)

#include <algorithm>
#include <iterator>
#include <span>
#include <utf8.h>

#include "host/text/case_mapping.h"
#include "host/text/case_tables.h"

namespace vela::host {
namespace {

constexpr char32_t kCapitalSigma = 0x3A3;
constexpr char32_t kFinalSigma = 0x3C2;

struct Tables {
  std::span<const case_tables::Range> ranges;
  std::span<const case_tables::Expansion> expansions;
};

constexpr Tables kUpperTables = {case_tables::kUpperRanges, case_tables::kUpperExpansions};
constexpr Tables kLowerTables = {case_tables::kLowerRanges, case_tables::kLowerExpansions};
constexpr Tables kFoldTables = {case_tables::kFoldRanges, case_tables::kFoldExpansions};

// The last entry that starts at or before the character, or null.
template <typename Entry>
const Entry* EntryFor(std::span<const Entry> entries, char32_t character) {
  const auto after =
      std::upper_bound(entries.begin(), entries.end(), character,
                       [](char32_t value, const Entry& entry) { return value < entry.first; });
  return after == entries.begin() ? nullptr : &*std::prev(after);
}

Folded Map(char32_t character, const Tables& tables) {
  const auto* expansion = EntryFor(tables.expansions, character);
  if (expansion != nullptr && expansion->first == character) {
    const auto& to = expansion->to;
    return {{to[0], to[1], to[2]}, to[2] != 0 ? 3 : 2};
  }
  const auto* range = EntryFor(tables.ranges, character);
  const bool maps =
      range != nullptr && character <= range->last && (character - range->first) % range->step == 0;
  return {{maps ? character + static_cast<char32_t>(range->difference) : character}, 1};
}

bool Has(std::span<const case_tables::Span> spans, char32_t character) {
  const auto* span = EntryFor(spans, character);
  return span != nullptr && character <= span->last;
}

bool IsIgnorable(char32_t character) { return Has(case_tables::kCaseIgnorable, character); }
bool IsCased(char32_t character) { return Has(case_tables::kCased, character); }

// Whether the sigma in [sigma, after) ends a word: letters in front of it and none behind, whatever
// marks lie between.
bool EndsWord(const char* begin, const char* sigma, const char* after, const char* end) {
  bool letter_before = false;
  while (sigma != begin) {
    const auto character = static_cast<char32_t>(utf8::unchecked::prior(sigma));
    if (IsIgnorable(character)) continue;
    letter_before = IsCased(character);
    break;
  }
  if (!letter_before) return false;
  while (after != end) {
    const auto character = static_cast<char32_t>(utf8::unchecked::next(after));
    if (!IsIgnorable(character)) return !IsCased(character);
  }
  return true;
}

}  // namespace

void AppendMappedCase(std::string_view valid, LetterCase letter_case, std::string& to) {
  const bool lower = letter_case == LetterCase::kLower;
  const Tables& tables = lower ? kLowerTables : kUpperTables;
  const char* const end = valid.data() + valid.size();
  for (const char* at = valid.data(); at != end;) {
    const char* const start = at;
    const auto character = static_cast<char32_t>(utf8::unchecked::next(at));
    if (character < 0x80) {
      to += static_cast<char>(character);
      MapAsciiCase(&to.back(), 1, letter_case);
      continue;
    }
    Folded mapped = Map(character, tables);
    if (lower && character == kCapitalSigma && EndsWord(valid.data(), start, at, end)) {
      mapped.characters[0] = kFinalSigma;
    }
    for (int i = 0; i < mapped.count; ++i) {
      utf8::unchecked::append(mapped.characters[static_cast<std::size_t>(i)],
                              std::back_inserter(to));
    }
  }
}

Folded FoldCodePoint(char32_t character) { return Map(character, kFoldTables); }

}  // namespace vela::host

#endif

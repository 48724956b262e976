#include "platform/automation/text_order.h"

#if !defined(_WIN32)

#include <string>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <vector>

namespace vela::platform {
namespace {

// Unlike the root locale: apostrophe and hyphen before white space, punctuation in the order of its
// codes, then the signs of mathematics; and letters that stand for two are those two.
constexpr char16_t kRules[] =
    u"&[before 1]'\t' < '' < '-' "
    u"& ' ' < '!' < '\"' < '#' < '$' < '%' < '&' < '(' < ')' < '*' < ',' < '.' < '/' < ':' < ';' < "
    u"'?' < '@' < '[' < '\\\\' < ']' < '^' < '_' < '`' < '{' < '|' < '}' < '~' < '+' < '<' < '=' < "
    u"'>' & ss = \u00DF & ae = \u00E6 & AE = \u00C6 & oe = \u0153 & OE = \u0152 & th = \u00FE & TH "
    u"= "
    u"\u00DE";

const UCollator* Collator() {
  static const UCollator* const collator = [] {
    UErrorCode error = U_ZERO_ERROR;
    UCollator* opened = ucol_openRules(kRules, -1, UCOL_ON, UCOL_TERTIARY, nullptr, &error);
    return U_SUCCESS(error) ? opened : nullptr;
  }();
  return collator;
}

constexpr int kControlRank = 1;

// The rank of a unit that decides last; 0 for every other.
int MinorRank(char16_t unit) {
  if (unit == u'-') return kControlRank + 2;
  if (unit == u'\'') return kControlRank + 1;
  const bool control = unit < u'\t' || (unit > u'\r' && unit < u' ') || unit == 0x7F;
  return control || unit == 0xAD ? kControlRank : 0;
}

struct Minor {
  std::size_t position;
  int rank;
  char16_t unit;
};

// Takes the units with a rank out of text; words: hyphens and apostrophes too.
std::vector<Minor> TakeMinors(std::u16string& text, bool words) {
  std::vector<Minor> minors;
  std::u16string kept;
  for (const char16_t unit : text) {
    const int rank = MinorRank(unit);
    if (rank == 0 || (rank > kControlRank && !words)) {
      kept += unit;
    } else {
      minors.push_back({kept.size(), rank, unit});
    }
  }
  text = kept;
  return minors;
}

int CompareMinors(const std::vector<Minor>& left, const std::vector<Minor>& right) {
  for (std::size_t i = 0; i < left.size() && i < right.size(); ++i) {
    // The later one stands before.
    if (left[i].position != right[i].position) {
      return left[i].position > right[i].position ? -1 : 1;
    }
    if (left[i].rank != right[i].rank) return left[i].rank < right[i].rank ? -1 : 1;
    if (left[i].unit != right[i].unit) return left[i].unit < right[i].unit ? -1 : 1;
  }
  return left.size() < right.size() ? -1 : left.size() > right.size() ? 1 : 0;
}

template <typename Belongs>
void RemoveCharacters(std::u16string& text, Belongs belongs) {
  std::u16string kept;
  const auto size = static_cast<std::int32_t>(text.size());
  for (std::int32_t i = 0; i < size;) {
    const std::int32_t start = i;
    UChar32 character = 0;
    U16_NEXT(text.data(), i, size, character);
    if (!belongs(character)) kept.append(text, std::size_t(start), std::size_t(i - start));
  }
  text = kept;
}

bool IsSymbol(UChar32 character) {
  return (U_GET_GC_MASK(character) & (U_GC_P_MASK | U_GC_S_MASK | U_GC_Z_MASK | U_GC_CC_MASK)) != 0;
}

bool IsAccent(UChar32 character) { return u_charType(character) == U_NON_SPACING_MARK; }

// An operation of the library on the whole text; the text stays as it is where that fails.
template <typename Operation>
void Transform(std::u16string& text, std::size_t growth, Operation operation) {
  std::u16string result(text.size() * growth + 16, u'\0');
  UErrorCode error = U_ZERO_ERROR;
  const std::int32_t size =
      operation(text.data(), static_cast<std::int32_t>(text.size()), result.data(),
                static_cast<std::int32_t>(result.size()), &error);
  if (U_FAILURE(error)) return;
  result.resize(static_cast<std::size_t>(size));
  text = std::move(result);
}

void Decompose(std::u16string& text) {
  UErrorCode error = U_ZERO_ERROR;
  const UNormalizer2* normalizer = unorm2_getNFDInstance(&error);
  if (U_FAILURE(error)) return;
  Transform(text, 4, [&](auto* source, auto size, auto* target, auto capacity, auto* code) {
    return unorm2_normalize(normalizer, source, size, target, capacity, code);
  });
}

void FoldCase(std::u16string& text) {
  Transform(text, 3, [](auto* source, auto size, auto* target, auto capacity, auto* code) {
    return u_strFoldCase(target, capacity, source, size, U_FOLD_CASE_DEFAULT, code);
  });
}

void Apply(ULONG flags, std::u16string& text) {
  for (char16_t& unit : text) {
    if (flags & NORM_IGNOREWIDTH) {
      if (unit >= 0xFF01 && unit <= 0xFF5E) unit = static_cast<char16_t>(unit - 0xFEE0);
      if (unit == 0x3000) unit = u' ';
    }
    // Katakana to hiragana.
    if ((flags & NORM_IGNOREKANATYPE) && unit >= 0x30A1 && unit <= 0x30F6) {
      unit = static_cast<char16_t>(unit - 0x60);
    }
  }
  if (flags & NORM_IGNORENONSPACE) {
    Decompose(text);
    RemoveCharacters(text, IsAccent);
  }
  if (flags & NORM_IGNORECASE) FoldCase(text);
  if (flags & NORM_IGNORESYMBOLS) RemoveCharacters(text, IsSymbol);
}

}  // namespace

int CompareTexts(std::u16string_view left, std::u16string_view right, ULONG flags) {
  if (left == right) return 0;
  // Longer texts than the library can address compare by their codes.
  constexpr std::size_t kLongest = 0x10000000;
  const UCollator* collator = Collator();
  if (collator == nullptr || left.size() > kLongest || right.size() > kLongest) {
    return left.compare(right);
  }
  std::u16string a(left);
  std::u16string b(right);
  Apply(flags, a);
  Apply(flags, b);
  const bool words = (flags & SORT_STRINGSORT) == 0;
  const auto minors_a = TakeMinors(a, words);
  const auto minors_b = TakeMinors(b, words);
  const UCollationResult order =
      ucol_strcoll(collator, a.data(), static_cast<std::int32_t>(a.size()), b.data(),
                   static_cast<std::int32_t>(b.size()));
  if (order != UCOL_EQUAL) return order == UCOL_LESS ? -1 : 1;
  return CompareMinors(minors_a, minors_b);
}

}  // namespace vela::platform

#endif

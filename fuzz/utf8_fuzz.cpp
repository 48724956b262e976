// Runs the operations of strings on any bytes, by bytes and by characters, against the same
// operations on a list of characters that a plain decoder makes.
#include <algorithm>
#include <cstdint>
#include <fuzzer/FuzzedDataProvider.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "frame/interface/string_utf8.h"
#include "fuzz/require.h"
#include "text/text_encoding.h"
#include "text/text_forms.h"
#include "text/utf8_character.h"
#include "text/wildcard.h"
#include "text/wildcard_pieces.h"

namespace {

using Characters = std::vector<std::string>;

// Bytes of the valid sequence in front, 0 when there is none.
std::size_t SequenceBytes(std::string_view text) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const std::size_t bytes = byte(0) < 0x80             ? 1
                            : (byte(0) & 0xE0) == 0xC0 ? 2
                            : (byte(0) & 0xF0) == 0xE0 ? 3
                            : (byte(0) & 0xF8) == 0xF0 ? 4
                                                       : 0;
  if (bytes < 2) return bytes;
  if (bytes > text.size()) return 0;
  char32_t code_point = byte(0) & (0x7Fu >> bytes);
  for (std::size_t i = 1; i < bytes; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    code_point = code_point << 6 | (byte(i) & 0x3Fu);
  }
  constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool is_surrogate = code_point >= 0xD800 && code_point < 0xE000;
  return code_point < kLeast[bytes] || code_point > 0x10FFFF || is_surrogate ? 0 : bytes;
}

Characters Decoded(std::string_view text) {
  Characters characters;
  while (!text.empty()) {
    const std::size_t bytes = std::max<std::size_t>(SequenceBytes(text), 1);
    characters.emplace_back(text.substr(0, bytes));
    text.remove_prefix(bytes);
  }
  return characters;
}

bool IsInvalid(const std::string& character) { return SequenceBytes(character) == 0; }

std::string Joined(const Characters& characters, std::size_t first, std::size_t count) {
  std::string text;
  first = std::min(first, characters.size());
  count = std::min(count, characters.size() - first);
  for (std::size_t i = first; i < first + count; ++i) text += characters[i];
  return text;
}

int Find(const Characters& text, const Characters& sub, std::size_t start) {
  if (start > text.size()) return -1;
  const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(start), text.end(),
                                 sub.begin(), sub.end());
  return found == text.end() && !sub.empty() ? -1 : static_cast<int>(found - text.begin());
}

bool Contains(const Characters& set, const std::string& character) {
  return std::find(set.begin(), set.end(), character) != set.end();
}

std::string TextOf(const CStringUTF8& text) { return std::string(text.View()); }

std::size_t Clipped(int count) { return static_cast<std::size_t>(std::max(count, 0)); }

struct Case {
  std::string text, other;
  int index, count;
  char ch;
};

void CheckBytes(const Case& c) {
  const CStringUTF8 text{std::string_view(c.text)};
  const std::string_view view = c.text;
  const std::size_t first = std::min(Clipped(c.index), view.size());
  REQUIRE(text.Left(c.count).View() == view.substr(0, Clipped(c.count)));
  REQUIRE(text.Mid(c.index, c.count).View() == view.substr(first, Clipped(c.count)));
  const std::size_t right = std::min(Clipped(c.count), view.size());
  REQUIRE(text.Right(c.count).View() == view.substr(view.size() - right));
  const bool inside = c.index >= 0 && c.index <= text.GetLength();
  const std::size_t found = inside ? view.find(c.other, first) : view.npos;
  REQUIRE(text.Find(std::string_view(c.other), c.index) == static_cast<int>(found));
  REQUIRE(text.ReverseFind(c.ch) == static_cast<int>(view.rfind(c.ch)));
  REQUIRE(text.Count(c.ch) == std::count(view.begin(), view.end(), c.ch));

  CStringUTF8 changed = text;
  std::string expected = c.text;
  REQUIRE(changed.Insert(c.index, std::string_view(c.other)) ==
          static_cast<int>(expected.insert(first, c.other).size()));
  REQUIRE(changed.View() == expected);
  changed.Delete(c.index, c.count);
  expected.erase(std::min(Clipped(c.index), expected.size()), Clipped(c.count));
  REQUIRE(changed.View() == expected);
  // A copy of itself inside itself.
  changed.Insert(c.index, changed.View());
  expected.insert(std::min(Clipped(c.index), expected.size()), std::string(expected));
  REQUIRE(changed.View() == expected);
}

void CheckReplace(const Case& c) {
  const std::string by = c.text.substr(0, Clipped(c.count) % 8);
  std::string expected;
  int count = 0;
  for (std::size_t at = 0; at < c.text.size();) {
    if (!c.other.empty() && c.text.compare(at, c.other.size(), c.other) == 0) {
      expected += by;
      at += c.other.size();
      ++count;
    } else {
      expected += c.text[at++];
    }
  }
  CStringUTF8 replaced{std::string_view(c.text)};
  REQUIRE(replaced.Replace(std::string_view(c.other), by) == count);
  REQUIRE(replaced.View() == expected);
  std::erase(expected, c.ch);
  replaced.Remove(c.ch);
  REQUIRE(replaced.View() == expected);
}

// Whether an operation on the character at an index was refused, as outside the text.
template <class Operation>
bool IsRefused(const Operation& operation) {
  try {
    operation();
    return false;
  } catch (const std::out_of_range&) {
    return true;
  }
}

void CheckCharacters(const Case& c, const Characters& characters, const Characters& sub) {
  const CStringUTF8 text{std::string_view(c.text)};
  const int size = static_cast<int>(characters.size());
  const std::size_t first = std::min(Clipped(c.index), characters.size());
  const std::size_t count = std::min(Clipped(c.count), characters.size() - first);
  REQUIRE(text.CharGetLength() == size);
  REQUIRE(text.CharLeft(c.count).View() == Joined(characters, 0, Clipped(c.count)));
  REQUIRE(text.CharMid(c.index).View() == Joined(characters, first, characters.size()));
  REQUIRE(text.CharMid(c.index, c.count).View() == Joined(characters, first, count));
  const std::size_t right = std::min(Clipped(c.count), characters.size());
  REQUIRE(text.CharRight(c.count).View() == Joined(characters, characters.size() - right, right));
  const int found = c.index < 0 ? -1 : Find(characters, sub, Clipped(c.index));
  REQUIRE(text.CharFind(std::string_view(c.other), c.index) == found);
  const auto has_byte = [&](const std::string& character) { return character[0] == c.ch; };
  const auto last = std::find_if(characters.rbegin(), characters.rend(), has_byte);
  REQUIRE(text.CharReverseFind(c.ch) == static_cast<int>(characters.rend() - last) - 1);

  const bool outside = c.index < 0 || c.index >= size;
  CStringUTF8 changed = text;
  REQUIRE(IsRefused([&] { changed.CharSetAt(c.index, std::string_view(c.other)); }) == outside);
  REQUIRE(IsRefused([&] { static_cast<void>(text.CharTextAt(c.index)); }) == outside);
  if (!outside) {
    REQUIRE(text.CharTextAt(c.index).View() == characters[first]);
    REQUIRE(changed.View() == Joined(characters, 0, first) + c.other +
                                  Joined(characters, first + 1, characters.size()));
  }
  changed = text;
  changed.CharInsert(c.index, std::string_view(c.other));
  REQUIRE(changed.View() ==
          Joined(characters, 0, first) + c.other + Joined(characters, first, characters.size()));
  changed = text;
  changed.CharDelete(c.index, c.count);
  REQUIRE(changed.View() ==
          Joined(characters, 0, first) + Joined(characters, first + count, characters.size()));
}

void CheckSets(const Case& c, const Characters& characters) {
  const CStringUTF8 text{std::string_view(c.text)};
  const Characters set = Decoded(c.other);
  const CStringUTF8 set_text{std::string_view(c.other)};
  std::size_t inside = 0, outside = 0, behind = characters.size();
  while (inside < characters.size() && Contains(set, characters[inside])) ++inside;
  while (outside < characters.size() && !Contains(set, characters[outside])) ++outside;
  while (behind > 0 && Contains(set, characters[behind - 1])) --behind;
  REQUIRE(text.SpanIncluding(set_text).View() == Joined(characters, 0, inside));
  const std::string excluded = Joined(characters, 0, outside);
  REQUIRE(text.SpanExcluding(set_text).View() == excluded);
  REQUIRE(text.FindOneOf(set_text) ==
          (outside == characters.size() ? -1 : static_cast<int>(excluded.size())));
  CStringUTF8 trimmed = text;
  trimmed.TrimLeft(set_text);
  REQUIRE(trimmed.View() == Joined(characters, inside, characters.size()));
  trimmed = text;
  trimmed.TrimRight(set_text);
  REQUIRE(trimmed.View() == Joined(characters, 0, behind));
  trimmed.TrimLeft();
  trimmed.TrimRight();
  const std::string once = TextOf(trimmed);
  trimmed.TrimRight();
  trimmed.TrimLeft();
  REQUIRE(trimmed.View() == once);
}

// The position of the first characters that compare equal without regard to case, or -1.
int FindNoCase(const Characters& text, const CStringUTF8& sub) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    CStringUTF8 run;
    for (std::size_t end = i; end < text.size(); ++end) {
      run += std::string_view(text[end]);
      if (run.CompareNoCase(sub) == 0) return static_cast<int>(Joined(text, 0, i).size());
    }
  }
  return -1;
}

void CheckCase(const Case& c, const Characters& characters) {
  const CStringUTF8 text{std::string_view(c.text)};
  CStringUTF8 mapped = text;
  mapped.MakeUpper();
  const std::string upper = TextOf(mapped);
  mapped.MakeUpper();
  REQUIRE(mapped.View() == upper);
  mapped = text;
  mapped.MakeLower();
  const std::string lower = TextOf(mapped);
  const auto invalid = std::count_if(characters.begin(), characters.end(), IsInvalid);
  for (const std::string& other : {upper, lower}) {
    const Characters mapped_characters = Decoded(other);
    REQUIRE(std::count_if(mapped_characters.begin(), mapped_characters.end(), IsInvalid) ==
            invalid);
  }
  for (std::size_t i = 0; i < std::min(upper.size(), c.text.size()); ++i) {
    if (static_cast<unsigned char>(c.text[i]) >= 0x80) break;
    const bool is_letter = c.text[i] >= 'a' && c.text[i] <= 'z';
    REQUIRE(upper[i] == (is_letter ? c.text[i] - 32 : c.text[i]));
  }

  const CStringUTF8 other{std::string_view(c.other)};
  REQUIRE(text.CompareNoCase(text) == 0);
  REQUIRE(text.CompareNoCase(other) == -other.CompareNoCase(text));

  int matched = -1;
  const int at = text.FindNoCase(c.other, 0, &matched);
  if (at >= 0) {
    REQUIRE(at + matched <= text.GetLength());
    REQUIRE(text.Mid(at, matched).CompareNoCase(other) == 0);
  }
  const bool is_small = characters.size() <= 48;
  if (is_small && !c.other.empty()) REQUIRE(at == FindNoCase(characters, other));
  const int sensitive = text.CharFind(std::string_view(c.other), 0, true);
  const int insensitive = text.CharFind(std::string_view(c.other), 0, false);
  REQUIRE(sensitive < 0 || (insensitive >= 0 && insensitive <= sensitive));
  REQUIRE((insensitive >= 0) == (at >= 0));
  if (at >= 0) REQUIRE(static_cast<int>(Joined(characters, 0, Clipped(insensitive)).size()) == at);
}

// What each prefix of the pattern matches of the text, a row of the table at a time.
bool Matches(const Characters& text, const Characters& pattern, bool case_sensitive) {
  const auto equal = [&](const std::string& a, const std::string& b) {
    return a == b ||
           (!case_sensitive &&
            CStringUTF8(std::string_view(a)).CompareNoCase(CStringUTF8(std::string_view(b))) == 0);
  };
  std::vector<bool> row(text.size() + 1, false);
  row[0] = true;
  for (const std::string& expected : pattern) {
    std::vector<bool> next(text.size() + 1, false);
    for (std::size_t i = 0; i <= text.size(); ++i) {
      if (expected == "*") {
        next[i] = row[i] || (i > 0 && next[i - 1]);
      } else if (i > 0 && row[i - 1]) {
        next[i] = expected == "?" || equal(expected, text[i - 1]);
      }
    }
    row.swap(next);
  }
  return row[text.size()];
}

void CheckTools(const Case& c, const Characters& characters, const Characters& other) {
  const std::string_view text = c.text;
  for (const bool case_sensitive : {true, false}) {
    const bool matches = Matches(characters, other, case_sensitive);
    REQUIRE(vela::text::MatchesWildcards(text, c.other, case_sensitive) == matches);
    REQUIRE(vela::text::MatchesPieces(text, c.other, case_sensitive) == matches);
  }

  const auto first_invalid = std::find_if(characters.begin(), characters.end(), IsInvalid);
  const std::size_t valid =
      Joined(characters, 0, static_cast<std::size_t>(first_invalid - characters.begin())).size();
  REQUIRE(vela::text::FindInvalidUtf8(text) == valid);
  for (const unsigned encoding : {2u, 3u}) {
    std::size_t bytes = 0;
    for (const std::string& character : characters) bytes += character.size() == 4 ? 4 : 2;
    const auto to = static_cast<vela::text::TextEncoding>(encoding);
    REQUIRE(vela::text::EncodeText(text, to).size() == bytes);
  }
  for (const bool is_whole : {false, true}) {
    static_cast<void>(vela::text::DetectEncoding(text, is_whole));
  }

  for (const auto misfits :
       {vela::text::MisfitCharacters::kUnderscore, vela::text::MisfitCharacters::kDrop}) {
    const std::string name = vela::text::ValidCName(text, misfits);
    REQUIRE(!name.empty() && (name[0] < '0' || name[0] > '9'));
    REQUIRE(vela::text::ValidCName(name, misfits) == name);
  }
  const std::size_t most = Clipped(c.count);
  if (text.size() <= most) return;
  for (const auto cut : {vela::text::CutAt::kEnd, vela::text::CutAt::kInside}) {
    const std::string shortened = vela::text::Shortened(text, most, cut);
    REQUIRE(shortened.size() <= most && shortened.size() + 7 > most);
    const Characters kept = Decoded(shortened);
    REQUIRE(std::count_if(kept.begin(), kept.end(), IsInvalid) <=
            std::count_if(characters.begin(), characters.end(), IsInvalid));
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  Case c;
  c.index =
      input.ConsumeBool() ? input.ConsumeIntegralInRange(-2, 40) : input.ConsumeIntegral<int>();
  c.count =
      input.ConsumeBool() ? input.ConsumeIntegralInRange(-2, 40) : input.ConsumeIntegral<int>();
  c.ch = static_cast<char>(input.ConsumeIntegral<std::uint8_t>());
  c.other = input.ConsumeRandomLengthString(24);
  c.text = input.ConsumeRemainingBytesAsString();
  const Characters characters = Decoded(c.text), other = Decoded(c.other);
  CheckBytes(c);
  CheckReplace(c);
  CheckCharacters(c, characters, other);
  CheckSets(c, characters);
  CheckCase(c, characters);
  CheckTools(c, characters, other);
  return 0;
}

#include "host/text/character_search.h"

#include <algorithm>
#include <iterator>
#include <span>
#include <string>
#include <utf8.h>
#include <vector>

#include "host/text/byte_scan.h"
#include "host/text/case_mapping.h"
#include "host/text/characters.h"

namespace vela::host {
namespace {

Folded Units(char32_t character, CaseMatters case_matters) {
  return case_matters == CaseMatters::kYes ? Folded{{character}, 1} : FoldCharacter(character);
}

// A pattern of units (folded characters) with the table of Knuth, Morris and Pratt.
class Pattern {
 public:
  Pattern(std::string_view text, CaseMatters case_matters) {
    for (CharacterReader reader(text); !reader.AtEnd();) {
      const Folded folded = Units(reader.Next(), case_matters);
      units_.insert(units_.end(), folded.characters.begin(),
                    folded.characters.begin() + folded.count);
    }
    border_.resize(units_.size() + 1);
    for (std::size_t i = 1; i < units_.size(); ++i) {
      border_[i + 1] = Advance(border_[i], units_[i]);
    }
  }

  std::size_t size() const { return units_.size(); }
  // Units matched after one more, given how many were; less than size() before the call.
  std::size_t Advance(std::size_t matched, char32_t unit) const {
    while (matched > 0 && units_[matched] != unit) matched = border_[matched];
    return units_[matched] == unit ? matched + 1 : 0;
  }
  // Units that still match when the whole pattern did.
  std::size_t Restart() const { return border_[units_.size()]; }
  std::span<const char32_t> All() const { return units_; }

 private:
  std::vector<char32_t> units_;
  std::vector<std::uint32_t> border_;  // longest proper border of each prefix
};

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

// The first two bytes that a match of a pattern can have, found sixteen places at a time.
class MatchStart {
 public:
  // units: the pattern, folded unless case matters; at least one.
  MatchStart(std::span<const char32_t> units, CaseMatters case_matters);

  // From a place between characters, the next one in [at, end) where a match may begin; near the
  // end any.
  const char* Next(const char* at, const char* end) const {
    for (; static_cast<std::size_t>(end - at) > Bytes16::kSize; at += Bytes16::kSize) {
      const unsigned places =
          (first_.Match(Bytes16::Load(at)) & second_.Match(Bytes16::Load(at + 1))).HighBits();
      if (places != 0) return at + std::countr_zero(places);
    }
    return at;
  }

 private:
  class ByteSet {
   public:
    void Add(char byte);
    void AddBeyondAscii() { beyond_ascii_ = Bytes16::Fill('\x80'); }
    void AddAll() { all_ = Bytes16::Fill('\x80'); }
    // The high bit of each byte that is in the set.
    Bytes16 Match(Bytes16 bytes) const {
      Bytes16 match = all_ | (bytes & beyond_ascii_);
      for (const Bytes16 byte : bytes_) match = match | bytes.Equal(byte);
      return match;
    }

   private:
    std::vector<Bytes16> bytes_;
    Bytes16 beyond_ascii_ = Bytes16::Fill(0);
    Bytes16 all_ = Bytes16::Fill(0);
  };

  ByteSet first_, second_;
};

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

// Leading ASCII characters of both texts that differ at most in case.
std::size_t CommonAsciiPrefix(std::string_view a, std::string_view b) {
  const auto equal = [](char x, char y) {
    const auto unit_x = static_cast<unsigned char>(x);
    const auto unit_y = static_cast<unsigned char>(y);
    return unit_x < 0x80 && unit_y < 0x80 &&
           FoldCharacter(unit_x).characters[0] == FoldCharacter(unit_y).characters[0];
  };
  const auto end = std::mismatch(a.begin(), a.end(), b.begin(), b.end(), equal).first;
  return static_cast<std::size_t>(end - a.begin());
}

class FoldedReader {
 public:
  explicit FoldedReader(std::string_view text) : reader_(text) {}
  // False at the end.
  bool Next(char32_t& unit) {
    if (given_ == folded_.count) {
      if (reader_.AtEnd()) return false;
      folded_ = FoldCharacter(reader_.Next());
      given_ = 0;
    }
    unit = folded_.characters[static_cast<std::size_t>(given_++)];
    return true;
  }

 private:
  CharacterReader reader_;
  Folded folded_{{}, 0};
  int given_ = 0;
};

}  // namespace

CharacterMatch FindCharacters(std::string_view text, std::string_view sub, std::size_t start,
                              CaseMatters case_matters) {
  if (start > text.size()) return {};
  if (sub.empty()) return {start, 0};
  const std::string_view rest = text.substr(start);
  const Pattern pattern(sub, case_matters);
  const MatchStart match_start(pattern.All(), case_matters);
  constexpr std::size_t kInside = std::string_view::npos;
  // Where the character of each of the last units starts, for its first unit only.
  std::vector<std::size_t> starts(pattern.size());
  std::size_t slot = 0;
  std::size_t matched = 0;
  for (CharacterReader reader(rest); !reader.AtEnd();) {
    if (matched == 0) {
      reader.SkipTo([&](const char* at, const char* end) { return match_start.Next(at, end); });
    }
    const std::size_t position = reader.Position();
    const Folded folded = Units(reader.Next(), case_matters);
    for (int i = 0; i < folded.count; ++i) {
      starts[slot] = i == 0 ? position : kInside;
      slot = slot + 1 == starts.size() ? 0 : slot + 1;
      matched = pattern.Advance(matched, folded.characters[static_cast<std::size_t>(i)]);
      if (matched < pattern.size()) continue;
      // The slot to be filled next holds the oldest unit: the first of the match.
      const bool whole = i + 1 == folded.count && starts[slot] != kInside;
      if (whole) return {start + starts[slot], reader.Position() - starts[slot]};
      matched = pattern.Restart();
    }
  }
  return {};
}

int CompareFolded(std::string_view a, std::string_view b) {
  const std::size_t same = CommonAsciiPrefix(a, b);
  a.remove_prefix(same);
  b.remove_prefix(same);
  FoldedReader reader_a(a);
  FoldedReader reader_b(b);
  for (;;) {
    char32_t unit_a = 0;
    char32_t unit_b = 0;
    const bool more_a = reader_a.Next(unit_a);
    const bool more_b = reader_b.Next(unit_b);
    if (!more_a || !more_b) return static_cast<int>(more_a) - static_cast<int>(more_b);
    if (unit_a != unit_b) return unit_a < unit_b ? -1 : 1;
  }
}

}  // namespace vela::host

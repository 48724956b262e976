#include "host/text/case_mapping.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <utf8.h>
#include <vector>

#include "host/text/byte_scan.h"
#include "host/text/characters.h"
#include "host/text/memory_search.h"

namespace vela::host {

namespace {

// By the platform, with invalid bytes as they are.
void AppendMapped(std::string_view text, LetterCase letter_case, std::string& to) {
  const char* at = text.data();
  const char* const end = at + text.size();
  while (at != end) {
    const char* const valid_end = utf8::find_invalid(at, end);
    if (valid_end != at) {
      AppendMappedCase({at, static_cast<std::size_t>(valid_end - at)}, letter_case, to);
    }
    at = valid_end;
    if (at != end) to += *at++;
  }
}

char MapAscii(char ch, LetterCase letter_case) {
  const char first = letter_case == LetterCase::kUpper ? 'a' : 'A';
  const bool changes = ch >= first && ch <= first + ('z' - 'a');
  return static_cast<char>(ch ^ (changes ? 'a' - 'A' : 0));
}

// Changes the case of ASCII letters; other bytes stay.
class AsciiMapper {
 public:
  explicit AsciiMapper(LetterCase letter_case)
      : to_lowest_(Bytes16::Fill(
            static_cast<char>(-128 - (letter_case == LetterCase::kUpper ? 'a' : 'A')))) {}
  Bytes16 operator()(Bytes16 bytes) const {
    const Bytes16 changes = (bytes + to_lowest_).Less(Bytes16::Fill(-128 + 26));
    return bytes ^ (changes & Bytes16::Fill('a' - 'A'));
  }

 private:
  Bytes16 to_lowest_;  // brings the first letter that changes to the lowest number
};

// What the characters of two bytes, U+0080 to U+07FF, become by themselves.
class TwoByteTable {
 public:
  struct Entry {
    char bytes[7];
    std::uint8_t size;
  };

  explicit TwoByteTable(LetterCase letter_case) {
    std::string mapped;
    for (unsigned code = 0; code < entries_.size(); ++code) {
      const char character[2] = {static_cast<char>(0xC0 | code >> 6),
                                 static_cast<char>(0x80 | (code & 0x3F))};
      mapped.clear();
      if (code >= 0x80) AppendMappedCase({character, 2}, letter_case, mapped);
      Entry& entry = entries_[code];
      entry.size = static_cast<std::uint8_t>(mapped.copy(entry.bytes, sizeof entry.bytes));
    }
  }
  // lead and trail are the bytes of a valid character.
  const Entry& operator()(unsigned char lead, unsigned char trail) const {
    return entries_[(lead & 0x1Fu) << 6 | (trail & 0x3Fu)];
  }

 private:
  std::array<Entry, 0x800> entries_;
};

const TwoByteTable& TwoBytes(LetterCase letter_case) {
  if (letter_case == LetterCase::kUpper) {
    static const TwoByteTable upper(LetterCase::kUpper);
    return upper;
  }
  static const TwoByteTable lower(LetterCase::kLower);
  return lower;
}

bool IsTrail(unsigned char byte) { return (byte & 0xC0) == 0x80; }

// Maps characters one by one; those of more than two bytes in runs, by the platform.
class CaseMapper {
 public:
  CaseMapper(std::string_view text, LetterCase letter_case, std::string& out)
      : at_(text.data()),
        end_(at_ + text.size()),
        letter_case_(letter_case),
        ascii_(letter_case),
        two_bytes_(TwoBytes(letter_case)),
        out_(out) {}

  void Run() {
    while (at_ != end_) {
      MapShort();
      out_.append(block_, static_cast<std::size_t>(to_ - block_));
      to_ = block_;
      if (at_ != end_ && !IsShort()) MapLong();
    }
  }

 private:
  static constexpr std::size_t kBlock = 4096;
  static constexpr std::size_t kMostOfStep = Bytes16::kSize + sizeof(TwoByteTable::Entry);

  std::size_t Left() const { return static_cast<std::size_t>(end_ - at_); }
  unsigned char Byte(std::size_t i) const { return static_cast<unsigned char>(at_[i]); }
  bool IsTwoBytes() const {
    return Left() >= 2 && Byte(0) >= 0xC2 && Byte(0) <= 0xDF && IsTrail(Byte(1));
  }
  bool IsShort() const { return Byte(0) < 0x80 || IsTwoBytes(); }

  // As many characters of one and two bytes as there are ahead and the block has room for.
  void MapShort() {
    while (at_ != end_ && static_cast<std::size_t>(block_ + kBlock - to_) >= kMostOfStep) {
      MapAsciiRun();
      if (at_ == end_ || Byte(0) < 0x80) continue;
      if (!IsTwoBytes()) return;
      const TwoByteTable::Entry& entry = two_bytes_(Byte(0), Byte(1));
      std::memcpy(to_, entry.bytes, sizeof entry.bytes);
      to_ += entry.size;
      at_ += 2;
    }
  }

  // Up to sixteen ASCII characters.
  void MapAsciiRun() {
    if (Left() < Bytes16::kSize) {
      if (Byte(0) < 0x80) *to_++ = MapAscii(*at_++, letter_case_);
      return;
    }
    const Bytes16 bytes = Bytes16::Load(at_);
    ascii_(bytes).Store(to_);
    const int run = std::countr_zero(bytes.HighBits() | 1u << Bytes16::kSize);
    to_ += run;
    at_ += run;
  }

  static bool MayBeShort(char ch) {
    const auto byte = static_cast<unsigned char>(ch);
    return byte < 0x80 || (byte >= 0xC2 && byte <= 0xDF);
  }

  // A run of longer characters and invalid bytes.
  void MapLong() {
    const char* const run_end = std::find_if(at_ + 1, end_, MayBeShort);
    AppendMapped({at_, static_cast<std::size_t>(run_end - at_)}, letter_case_, out_);
    at_ = run_end;
  }

  const char* at_;
  const char* const end_;
  LetterCase letter_case_;
  AsciiMapper ascii_;
  const TwoByteTable& two_bytes_;
  char block_[kBlock];
  char* to_ = block_;
  std::string& out_;
};

// The one letter whose lower case depends on what stands around it.
constexpr std::string_view kSigma = "\u03A3";
constexpr std::string_view kSpaces = " \t\r\n";

}  // namespace

const Folded& FoldTwoBytes(char32_t character) {
  constexpr std::size_t kEnd = 0x800;
  static const auto table = [] {
    auto folded = std::make_unique<std::array<Folded, kEnd>>();
    for (char32_t c = 0x80; c < kEnd; ++c) (*folded)[c] = FoldCodePoint(c);
    return folded;
  }();
  return (*table)[character];
}

std::span<const FoldedTo> CharactersFoldedTo(char32_t first) {
  // Behind the first two planes there are no letters with case.
  constexpr char32_t kEnd = 0x20000;
  const auto by_first = [](FoldedTo a, FoldedTo b) { return a.first < b.first; };
  static const auto sorted = [&] {
    std::vector<FoldedTo> all;
    for (char32_t c = 0; c < kEnd; ++c) {
      const char32_t folded = FoldCharacter(c).characters[0];
      if (folded != c) all.push_back({folded, c});
    }
    std::stable_sort(all.begin(), all.end(), by_first);
    return all;
  }();
  return {std::lower_bound(sorted.begin(), sorted.end(), FoldedTo{first, 0}, by_first),
          std::upper_bound(sorted.begin(), sorted.end(), FoldedTo{first, 0}, by_first)};
}

void MapAsciiCase(char* text, std::size_t length, LetterCase letter_case) {
  const AsciiMapper map(letter_case);
  std::size_t at = 0;
  for (; length - at >= Bytes16::kSize; at += Bytes16::kSize) {
    map(Bytes16::Load(text + at)).Store(text + at);
  }
  for (; at < length; ++at) text[at] = MapAscii(text[at], letter_case);
}

std::string MapCase(std::string_view text, LetterCase letter_case) {
  std::string mapped;
  mapped.reserve(text.size() + text.size() / 16);
  const auto map = [&](std::string_view part) { CaseMapper(part, letter_case, mapped).Run(); };
  if (letter_case == LetterCase::kLower) {
    // The platform looks at what is around a sigma, which ends at a space at the latest.
    const ByteSearch sigma(kSigma);
    for (std::size_t at; (at = sigma.FindIn(text)) != std::string_view::npos;) {
      const std::size_t begin = text.substr(0, at).find_last_of(kSpaces) + 1;
      map(text.substr(0, begin));
      text.remove_prefix(begin);
      const std::string_view word = text.substr(0, text.find_first_of(kSpaces));
      AppendMapped(word, letter_case, mapped);
      text.remove_prefix(word.size());
    }
  }
  map(text);
  return mapped;
}

}  // namespace vela::host

// Where in a text a match of folded characters may begin.
#pragma once

#include <span>
#include <vector>

#include "host/text/byte_scan.h"
#include "host/text/character_search.h"

namespace vela::host {

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

}  // namespace vela::host

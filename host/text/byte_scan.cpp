#include "host/text/byte_scan.h"

#include <algorithm>

namespace vela::host {

std::size_t CountByte(std::string_view text, char byte) {
  // Each byte of a counter holds up to 255 matches.
  constexpr std::size_t kMostRounds = 255;
  constexpr std::size_t kStep = 2 * Bytes16::kSize;
  const Bytes16 wanted = Bytes16::Fill(byte);
  const char* at = text.data();
  const char* const end = at + text.size();
  std::uint64_t count = 0;
  while (static_cast<std::size_t>(end - at) >= kStep) {
    const std::size_t rounds = std::min(static_cast<std::size_t>(end - at) / kStep, kMostRounds);
    Bytes16 first = Bytes16::Fill(0), second = first;
    for (const char* const stop = at + rounds * kStep; at != stop; at += kStep) {
      // A match is -1.
      first = first - Bytes16::Load(at).Equal(wanted);
      second = second - Bytes16::Load(at + Bytes16::kSize).Equal(wanted);
    }
    count += first.Sum() + second.Sum();
  }
  return count + static_cast<std::size_t>(std::count(at, end, byte));
}

std::size_t AsciiPrefix(std::string_view text) {
  constexpr std::size_t kStep = 4 * Bytes16::kSize;
  std::size_t at = 0;
  const auto load = [&](std::size_t offset) { return Bytes16::Load(text.data() + at + offset); };
  for (; text.size() - at >= kStep; at += kStep) {
    if (((load(0) | load(16)) | (load(32) | load(48))).HighBits() != 0) break;
  }
  while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
  return at;
}

}  // namespace vela::host

#include "text/plain_decimal.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>

namespace vela::text {
namespace {

constexpr std::size_t kMostDigits = 8;
constexpr double kPowersOfTen[kMostDigits + 1] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
constexpr std::uint64_t kIntegerPowersOfTen[kMostDigits + 1] = {
    1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};
constexpr std::uint64_t kMostExact = std::uint64_t{1} << 53;

constexpr std::uint64_t InEachByte(std::uint64_t byte) { return byte * 0x0101010101010101; }

struct Digits {
  std::size_t count;  // at most 8
  std::uint64_t value;
};

// The value of eight digits, one in each byte, the first in the lowest: pairs, fours, then all.
std::uint64_t ValueOf(std::uint64_t digits) {
  static_assert(std::endian::native == std::endian::little);
  constexpr std::uint64_t kPair = 0x000000FF000000FF;
  digits = digits * 10 + (digits >> 8);
  return ((digits & kPair) * (100 + (std::uint64_t{1000000} << 32)) +
          (digits >> 16 & kPair) * (1 + (std::uint64_t{10000} << 32))) >>
         32;
}

// The digits that eight bytes begin with.
[[gnu::always_inline]] inline Digits LeadingDigits(const char* text) {
  std::uint64_t bytes;
  std::memcpy(&bytes, text, sizeof bytes);
  bytes ^= InEachByte('0');
  // The high bit of each byte that is above 9.
  const std::uint64_t others =
      (((bytes & InEachByte(0x7F)) + InEachByte(0x7F - 9)) | bytes) & InEachByte(0x80);
  const auto count = static_cast<std::size_t>(std::countr_zero(others)) / 8;
  if (count == 0) return {0, 0};
  // Moved up, so that zeros stand in front.
  return {count, ValueOf(bytes << 8 * (kMostDigits - count))};
}

}  // namespace

bool ReadPlainDecimal(std::string_view token, std::string_view text, double& value) {
  // A sign, a point, and twice eight bytes, of which a few may be no digits.
  constexpr std::ptrdiff_t kRoom = 24;
  const std::less<> is_before;
  const char* const text_end = text.data() + text.size();
  const bool is_inside = !is_before(token.data(), text.data()) && is_before(token.data(), text_end);
  if (!is_inside || token.empty() || text_end - token.data() < kRoom) return false;
  const char* const end = token.data() + token.size();
  const bool is_negative = token.front() == '-';
  const char* at = token.data() + is_negative;
  const Digits whole = LeadingDigits(at);
  at += whole.count;
  if (whole.count == 0) return false;
  double magnitude = static_cast<double>(whole.value);
  if (at != end) {
    if (*at != '.') return false;
    const Digits fraction = LeadingDigits(at + 1);
    at += 1 + fraction.count;
    const std::uint64_t digits = whole.value * kIntegerPowersOfTen[fraction.count] + fraction.value;
    if (at != end || digits > kMostExact) return false;
    // Both are exact, so that the quotient is rounded once.
    magnitude = static_cast<double>(digits) / kPowersOfTen[fraction.count];
  }
  // No branch: signs are as random as the numbers.
  const auto sign = std::uint64_t{is_negative} << 63;
  value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | sign);
  return true;
}

}  // namespace vela::text

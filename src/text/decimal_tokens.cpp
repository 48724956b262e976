// The numbers that tables are full of, read fast.
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <emmintrin.h>
#include <system_error>

#include "text/tokens.h"

namespace vela::text {
namespace {

constexpr std::size_t kMostDigits = 8;
constexpr double kPowersOfTen[kMostDigits + 1] = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8};
constexpr std::uint64_t kIntegerPowersOfTen[kMostDigits + 1] = {
    1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000};

// A number as far as sixteen bytes show it: plain when it is one to eight digits, and perhaps a
// point with up to eight more, fifteen together.
struct Shape {
  unsigned first;     // bytes in front of the digits
  unsigned whole;     // digits in front of the point
  unsigned fraction;  // digits behind it
  std::size_t size;
};

Shape ShapeOf(const char* text) {
  const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text));
  // A bit for each byte.
  const auto where = [](__m128i is) { return static_cast<unsigned>(_mm_movemask_epi8(is)); };
  const auto is = [&](char ch) { return where(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(ch))); };
  const __m128i digits = _mm_sub_epi8(bytes, _mm_set1_epi8('0'));
  const unsigned is_digit = where(_mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits));
  // No branches: numbers with a sign or a point and those without come in any order.
  const unsigned sign = is('-') & 1;
  // What ends a row of digits, and the place behind the last byte.
  const unsigned ends = is_digit ^ sign ^ 0x1FFFF;
  const unsigned point = ends & (0 - ends) & is('.');
  const auto whole_end = static_cast<unsigned>(std::countr_zero(ends));
  const auto size = static_cast<unsigned>(std::countr_zero(ends ^ point));
  return {sign, whole_end - sign, size - whole_end - (point != 0), size};
}

// The first count of eight bytes, which are digits, as numbers with zeros in front.
std::uint64_t Digits(const char* text, unsigned count) {
  static_assert(std::endian::native == std::endian::little);
  std::uint64_t bytes;
  std::memcpy(&bytes, text, sizeof bytes);
  // In two steps, as a shift by all the bits is none.
  const auto half = static_cast<int>(4 * (kMostDigits - count));
  return (bytes ^ 0x3030303030303030) << half << half;
}

// The numbers that twice eight digits are, the first in the lower half.
std::uint64_t ValuesOf(std::uint64_t first, std::uint64_t second) {
  const auto factors = [](int even, int odd) { return _mm_set1_epi32(odd << 16 | even); };
  const __m128i digits =
      _mm_set_epi64x(static_cast<std::int64_t>(second), static_cast<std::int64_t>(first));
  const __m128i tens = _mm_mullo_epi16(_mm_and_si128(digits, factors(0xFF, 0xFF)), factors(10, 10));
  const __m128i pairs = _mm_add_epi16(tens, _mm_srli_epi16(digits, 8));
  const __m128i fours = _mm_madd_epi16(pairs, factors(100, 1));
  const __m128i eights = _mm_madd_epi16(_mm_packs_epi32(fours, fours), factors(10000, 1));
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
}

double ValueOf(const char* text, const Shape& shape) {
  const char* const digits_begin = text + shape.first;
  const std::uint64_t values = ValuesOf(Digits(digits_begin, shape.whole),
                                        Digits(digits_begin + shape.whole + 1, shape.fraction));
  const std::uint64_t digits =
      (values & 0xFFFFFFFF) * kIntegerPowersOfTen[shape.fraction] + (values >> 32);
  // Both are exact, so that the quotient is rounded once.
  const double magnitude =
      static_cast<double>(static_cast<std::int64_t>(digits)) / kPowersOfTen[shape.fraction];
  const std::uint64_t sign = static_cast<std::uint64_t>(shape.first) << 63;
  return std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | sign);
}

bool IsPlain(const Shape& shape) {
  return shape.whole - 1 < kMostDigits && shape.fraction <= kMostDigits;
}

// Reads any decimal; what is behind it, or null for anything else and for what is out of range.
const char* ReadDecimal(const char* text, const char* end, double& value) {
  const char first = text[*text == '-'];
  if (first != '.' && (first < '0' || first > '9')) return nullptr;
  const auto [read_end, error] = std::from_chars(text, end, value);
  return error == std::errc() ? read_end : nullptr;
}

}  // namespace

std::size_t Tokenizer::NextDecimals(std::span<double> values) {
  constexpr std::string_view kPartsOfNumbers = "+-.0123456789Ee";
  if (kPartsOfNumbers.find(separator_) != std::string_view::npos) return 0;
  // A sign, sixteen bytes and what follows them.
  constexpr std::ptrdiff_t kRoom = 18;
  const char* const end = text_.data() + text_.size();
  const char* next = text_.data() + position_;
  std::size_t count = 0;
  for (; count < values.size(); ++count) {
    const char* at = next;
    while (at != end && IsSpace(*at) && *at != separator_) ++at;
    if (end - at < kRoom) break;
    const Shape shape = ShapeOf(at);
    if (IsPlain(shape) && EndsToken(at[shape.size])) {
      values[count] = ValueOf(at, shape);
      next = at + shape.size + 1;
      continue;
    }
    const char* const token_end = ReadDecimal(at, end, values[count]);
    if (token_end == nullptr || token_end == end || !EndsToken(*token_end)) break;
    next = token_end + 1;
  }
  position_ = static_cast<std::size_t>(next - text_.data());
  return count;
}

}  // namespace vela::text

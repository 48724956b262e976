// Scans of bytes, sixteen at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <emmintrin.h>
#include <string_view>

namespace vela::host {

// Sixteen bytes. Comparisons give a mask of sixteen bits, the first byte in the lowest.
class Bytes16 {
 public:
  static constexpr std::size_t kSize = 16;

  explicit Bytes16(__m128i bytes) : bytes_(bytes) {}
  static Bytes16 Load(const char* from) {
    return Bytes16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
  }
  static Bytes16 Fill(char byte) { return Bytes16(_mm_set1_epi8(byte)); }
  void Store(char* to) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(to), bytes_); }

  Bytes16 operator|(Bytes16 other) const { return Bytes16(_mm_or_si128(bytes_, other.bytes_)); }
  Bytes16 operator&(Bytes16 other) const { return Bytes16(_mm_and_si128(bytes_, other.bytes_)); }
  Bytes16 operator^(Bytes16 other) const { return Bytes16(_mm_xor_si128(bytes_, other.bytes_)); }
  Bytes16 operator+(Bytes16 other) const { return Bytes16(_mm_add_epi8(bytes_, other.bytes_)); }
  Bytes16 operator-(Bytes16 other) const { return Bytes16(_mm_sub_epi8(bytes_, other.bytes_)); }
  // All bits of each byte for which it holds; bytes compare as signed numbers.
  Bytes16 Equal(Bytes16 other) const { return Bytes16(_mm_cmpeq_epi8(bytes_, other.bytes_)); }
  Bytes16 Less(Bytes16 other) const { return Bytes16(_mm_cmplt_epi8(bytes_, other.bytes_)); }
  // The highest bit of each byte.
  unsigned HighBits() const { return static_cast<unsigned>(_mm_movemask_epi8(bytes_)); }
  // The sum of the bytes as unsigned numbers.
  std::uint64_t Sum() const {
    const __m128i sums = _mm_sad_epu8(bytes_, _mm_setzero_si128());
    return static_cast<std::uint64_t>(_mm_cvtsi128_si64(sums)) +
           static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(sums, sums)));
  }

 private:
  __m128i bytes_;
};

// Occurrences of the byte.
std::size_t CountByte(std::string_view text, char byte);
// Bytes in front of the first that is not ASCII.
std::size_t AsciiPrefix(std::string_view text);

}  // namespace vela::host

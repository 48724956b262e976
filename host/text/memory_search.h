// Search for bytes in bytes.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace vela::host {

// Bytes to look for, prepared once for any number of searches. A search takes time in proportion to
// what it passes over, whatever the bytes are. The needle must outlive this.
class ByteSearch {
 public:
  explicit ByteSearch(std::string_view needle);

  // Position of the first occurrence at or after start, or npos. The empty needle is found at
  // start.
  std::size_t FindIn(std::string_view text, std::size_t start = 0) const;

 private:
  std::size_t FindByEnds(std::string_view text) const;
  // In linear time, whatever the needle is.
  std::size_t FindLong(std::string_view text) const;

  std::string_view needle_;
#if defined(_WIN32)
  // The two-way algorithm of Crochemore and Perrin: the needle is cut where both of its halves are
  // such that a mismatch in one allows a long shift. Linear time, constant memory.
  std::size_t left_ = 0;     // bytes of the left half
  std::size_t shift_ = 0;    // after a match of the right half only
  std::size_t overlap_ = 0;  // bytes that still match after such a shift
  // How far the needle moves to bring a byte of its own under the last byte of the window.
  std::array<std::size_t, 256> to_last_;
#endif
};

}  // namespace vela::host

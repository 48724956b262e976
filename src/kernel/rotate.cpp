#include "kernel/rotate.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace vela::kernel::detail {

namespace {

// A part of a second-level cache, so that the part set aside stays in it.
constexpr std::size_t kScratchSize = 131072;
using Scratch = std::array<std::byte, kScratchSize>;

void SwapBytes(std::byte* a, std::byte* b, std::size_t size, Scratch& scratch) {
  constexpr std::size_t kChunk = 2048;
  for (std::size_t done = 0; done < size; done += kChunk) {
    const std::size_t part = std::min(kChunk, size - done);
    std::memcpy(scratch.data(), a + done, part);
    std::memcpy(a + done, b + done, part);
    std::memcpy(b + done, scratch.data(), part);
  }
}

}  // namespace

// Exchanges the adjacent runs of `left` and `right` bytes at data.
void RotateBytes(std::byte* data, std::size_t left, std::size_t right) {
  Scratch scratch;
  // Each swap of equal runs puts one of them in its final place, until the shorter run fits into
  // the scratch space.
  while (std::min(left, right) > scratch.size()) {
    if (left <= right) {
      SwapBytes(data, data + left, left, scratch);
      data += left;
      right -= left;
    } else {
      SwapBytes(data + left - right, data + left, right, scratch);
      left -= right;
    }
  }
  if (left == 0 || right == 0) return;
  if (left <= right) {
    std::memcpy(scratch.data(), data, left);
    std::memmove(data, data + left, right);
    std::memcpy(data + right, scratch.data(), left);
  } else {
    std::memcpy(scratch.data(), data + left, right);
    std::memmove(data + right, data, left);
    std::memcpy(data, scratch.data(), right);
  }
}

}  // namespace vela::kernel::detail

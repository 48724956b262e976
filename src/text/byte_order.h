// The order of bytes in binary files.
#pragma once

#include <cstddef>
#include <span>

namespace vela::text {

// Reverses the bytes of each item in place; item_bytes is 1 (which changes nothing), 2, 4 or 8.
// Bytes that make no whole item stay as they are. The items need not be aligned.
void ReverseItems(std::span<std::byte> bytes, std::size_t item_bytes);

}  // namespace vela::text

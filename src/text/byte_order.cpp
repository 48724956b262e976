#include "text/byte_order.h"

#include <cstdint>
#include <cstring>

namespace vela::text {
namespace {

constexpr std::uint16_t Reversed(std::uint16_t item) { return __builtin_bswap16(item); }
constexpr std::uint32_t Reversed(std::uint32_t item) { return __builtin_bswap32(item); }
constexpr std::uint64_t Reversed(std::uint64_t item) { return __builtin_bswap64(item); }

template <class Item>
void Reverse(std::span<std::byte> bytes) {
  std::byte* const data = bytes.data();
  const std::size_t end = bytes.size() - bytes.size() % sizeof(Item);
  for (std::size_t at = 0; at < end; at += sizeof(Item)) {
    Item item;
    std::memcpy(&item, data + at, sizeof item);
    item = Reversed(item);
    std::memcpy(data + at, &item, sizeof item);
  }
}

}  // namespace

void ReverseItems(std::span<std::byte> bytes, std::size_t item_bytes) {
  switch (item_bytes) {
    case 2:
      return Reverse<std::uint16_t>(bytes);
    case 4:
      return Reverse<std::uint32_t>(bytes);
    case 8:
      return Reverse<std::uint64_t>(bytes);
    default:
      return;
  }
}

}  // namespace vela::text

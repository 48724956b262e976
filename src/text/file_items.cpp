// Members of "file" that move numbers in either order of their bytes.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>

#include "text/file_object.h"

using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;
using vela::platform::FileCause;

namespace {

// Small enough to stay in the cache between the file and the reversal.
constexpr std::size_t kItemBlock = std::size_t{1} << 17;

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

// Bytes that make no whole item stay as they are.
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

}  // namespace

struct CMSCFile::Items {
  std::byte* data;
  std::size_t bytes;
  std::size_t item_bytes;
  bool is_reversed;
};

std::size_t CMSCFile::ReadItems(const Items& items) {
  std::size_t total = 0;
  while (total < items.bytes) {
    const std::size_t asked = std::min(items.bytes - total, kItemBlock);
    std::size_t done = 0;
    const bool succeeds = Succeeds(ReadBytes(items.data + total, asked, done));
    if (items.is_reversed) {
      ReverseItems(std::span(items.data + total, done), items.item_bytes);
    }
    total += done;
    if (!succeeds || done < asked) break;
  }
  return total;
}

std::size_t CMSCFile::WriteItems(const Items& items) {
  std::size_t total = 0;
  FileCause cause = FileCause::kNone;
  if (!items.is_reversed) {
    cause = WriteBytes(items.data, items.bytes, total);
  } else {
    std::string block(std::min(items.bytes, kItemBlock), '\0');
    std::size_t asked = block.size(), done = asked;
    for (; total < items.bytes && done == asked; total += done) {
      asked = std::min(items.bytes - total, block.size());
      std::copy_n(items.data + total, asked, reinterpret_cast<std::byte*>(block.data()));
      ReverseItems(std::as_writable_bytes(std::span(block.data(), asked)), items.item_bytes);
      cause = WriteBytes(block.data(), asked, done);
    }
  }
  if (total < items.bytes && cause == FileCause::kNone) cause = FileCause::kDiskFull;
  Succeeds(cause);
  return total;
}

// Both kinds of items go up to 8 bytes; each kind has sizes that the other one lacks.
int CMSCFile::MoveItems(CTCall* call, bool is_float, std::size_t (CMSCFile::*move)(const Items&)) {
  return Run(call, Exactly(4), [&](Arguments& args) {
    if (!handle_.IsOpen()) Fail(status::kNotOpen);
    const int size = args.Int(1);
    const int count = args.Int(2);
    const bool is_reversed = args.Int(3) == 0;
    const bool is_size = is_float ? size == 4 || size == 8 : size == 1 || size == 2 || size == 4;
    if (!is_size || count <= 0) return args.Return(0);
    const std::size_t item_bytes = static_cast<std::size_t>(size);
    const std::size_t bytes = item_bytes * static_cast<std::size_t>(count);
    const Items items{BufferOf(args, 0, bytes), bytes, item_bytes, is_reversed};
    args.Return(static_cast<int>((this->*move)(items) / item_bytes));
  });
}

int CMSCFile::ReadInt(CTCall* call) { return MoveItems(call, false, &CMSCFile::ReadItems); }
int CMSCFile::WriteInt(CTCall* call) { return MoveItems(call, false, &CMSCFile::WriteItems); }
int CMSCFile::ReadFloat(CTCall* call) { return MoveItems(call, true, &CMSCFile::ReadItems); }
int CMSCFile::WriteFloat(CTCall* call) { return MoveItems(call, true, &CMSCFile::WriteItems); }

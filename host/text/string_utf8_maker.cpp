// Texts that share blocks of memory.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

#include "frame/interface/string_utf8.h"
#include "host/text/text_buffer.h"

namespace text_buffer = vela::host::text_buffer;
using text_buffer::Block;

namespace {

constexpr std::size_t kMostBlock = 8192;
// A larger text gains nothing from sharing a block.
constexpr std::size_t kMostInBlock = 256;
// Counted while a maker is at work on the block, which then needs no counting of its own.
constexpr std::int32_t kBeingFilled = std::numeric_limits<std::int32_t>::max();

}  // namespace

CStringUTF8Maker::CStringUTF8Maker(std::size_t texts, std::size_t bytes)
    : expected_(sizeof(Block) + bytes + texts * text_buffer::BytesInBlock({})) {}

CStringUTF8 CStringUTF8Maker::Make(std::string_view text) {
  if (text.empty() || text.size() > kMostInBlock) return CStringUTF8(text);
  const std::size_t bytes = text_buffer::BytesInBlock(text);
  if (bytes > size_ - used_) Begin(bytes);
  char* const place = text_buffer::PlaceInBlock(*reinterpret_cast<Block*>(block_), used_, text);
  used_ += bytes;
  ++made_;
  return CStringUTF8(CStringUTF8::Owned{place});
}

// A block for a text of so many bytes and others. When there are more texts than expected, each
// block is a part of all before, so that there are few.
void CStringUTF8Maker::Begin(std::size_t bytes) {
  Retire();
  const std::size_t wanted = std::max(expected_, begun_ / 4);
  const std::size_t size = std::clamp(wanted, sizeof(Block) + bytes, kMostBlock);
  void* const memory = std::malloc(size);
  if (memory == nullptr) throw std::bad_alloc();
  new (memory) Block{kBeingFilled};
  block_ = static_cast<char*>(memory);
  size_ = size;
  used_ = sizeof(Block);
  made_ = 0;
  begun_ += size;
  expected_ -= std::min(expected_, size);
}

// Leaves the block to its texts.
void CStringUTF8Maker::Retire() {
  if (block_ == nullptr) return;
  text_buffer::Forget(*reinterpret_cast<Block*>(block_), kBeingFilled - made_);
  block_ = nullptr;
  size_ = used_ = 0;
}

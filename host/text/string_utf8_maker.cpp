// Texts that share blocks of memory.
#include <cstdlib>
#include <limits>
#include <new>

#include "frame/interface/string_utf8.h"
#include "host/text/text_buffer.h"

namespace text_buffer = vela::host::text_buffer;
using text_buffer::Block;

namespace {

// A larger text gains nothing from sharing a block.
constexpr std::size_t kMostInBlock = 256;
// Counted while a maker is at work on the block, which then needs no counting of its own.
constexpr std::int32_t kBeingFilled = std::numeric_limits<std::int32_t>::max();

}  // namespace

CStringUTF8 CStringUTF8Maker::Make(std::string_view text) {
  if (text.empty() || text.size() > kMostInBlock) return CStringUTF8(text);
  const std::size_t bytes = text_buffer::BytesInBlock(text);
  if (block_ == nullptr || bytes > text_buffer::kBlockBytes - used_) Begin();
  char* const place = text_buffer::PlaceInBlock(*reinterpret_cast<Block*>(block_), used_, text);
  used_ += bytes;
  ++made_;
  return CStringUTF8(CStringUTF8::Owned{place});
}

void CStringUTF8Maker::Begin() {
  Retire();
  void* const memory = std::malloc(text_buffer::kBlockBytes);
  if (memory == nullptr) throw std::bad_alloc();
  new (memory) Block{kBeingFilled};
  block_ = static_cast<char*>(memory);
  used_ = sizeof(Block);
  made_ = 0;
}

// Leaves the block to its texts.
void CStringUTF8Maker::Retire() {
  if (block_ == nullptr) return;
  text_buffer::Forget(*reinterpret_cast<Block*>(block_), kBeingFilled - made_);
  block_ = nullptr;
}

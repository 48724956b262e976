// Construction, assignment, buffers and parts of a text; texts that share blocks of memory.
#include "frame/interface/string_utf8.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "frame/interface/host_services.h"
#include "host/text/string_utf8_detail.h"
#include "host/text/text_buffer.h"

namespace text_buffer = vela::host::text_buffer;
using text_buffer::Block;
using vela::host::ClipIndex;
using vela::host::ViewOf;

namespace {

constexpr std::size_t kMostBlock = 8192;
// A larger text gains nothing from sharing a block.
constexpr std::size_t kMostInBlock = 256;
// Counted while a maker is at work on the block, which then needs no counting of its own.
constexpr std::int32_t kBeingFilled = std::numeric_limits<std::int32_t>::max();

}  // namespace

CStringUTF8::CStringUTF8(const char* text) : data_(text_buffer::New(ViewOf(text))) {}

CStringUTF8::CStringUTF8(const char* text, int length)
    : data_(text_buffer::New(text == nullptr || length <= 0
                                 ? std::string_view()
                                 : std::string_view(text, static_cast<std::size_t>(length)))) {}

CStringUTF8::CStringUTF8(std::string_view text) : data_(text_buffer::New(text)) {}

CStringUTF8::CStringUTF8(const CStringUTF8& other) : data_(text_buffer::Share(other.data_)) {}

void CStringUTF8::Release() noexcept { text_buffer::Release(data_); }

CStringUTF8& CStringUTF8::operator=(const CStringUTF8& other) {
  if (data_ == other.data_) return *this;
  // A locked string takes the bytes, so that it stays locked.
  if (text_buffer::HeaderOf(data_).references.load(std::memory_order_relaxed) ==
      text_buffer::kLocked) {
    text_buffer::Assign(data_, other.View());
    return *this;
  }
  char* const shared = text_buffer::Share(other.data_);
  text_buffer::Release(data_);
  data_ = shared;
  return *this;
}

CStringUTF8& CStringUTF8::operator=(const char* text) {
  text_buffer::Assign(data_, ViewOf(text));
  return *this;
}

CStringUTF8& CStringUTF8::Assign(std::string_view text) {
  text_buffer::Assign(data_, text);
  return *this;
}

// Room is for texts to come: a string whose text was taken over by another gets no more than it
// needs, since this text may be taken over as well.
CStringUTF8& CStringUTF8::AssignWithRoom(std::string_view text) {
  const bool is_own = Header().references.load(std::memory_order_acquire) == 1;
  if (is_own && !text.empty()) {
    text_buffer::Reserve(data_, static_cast<std::int64_t>(text.size() + kPadding));
  }
  return Assign(text);
}

void CStringUTF8::Empty() { text_buffer::Assign(data_, {}); }

char CStringUTF8::GetAt(int index) const {
  if (index < 0 || index >= GetLength()) throw std::out_of_range("text index");
  return data_[index];
}

void CStringUTF8::SetAt(int index, char ch) {
  if (index < 0 || index >= GetLength()) throw std::out_of_range("text index");
  text_buffer::Reserve(data_, GetLength());
  data_[index] = ch;
}

CStringUTF8 CStringUTF8::Mid(int first) const { return Mid(first, GetLength()); }

CStringUTF8 CStringUTF8::Mid(int first, int count) const {
  const int from = ClipIndex(first, GetLength());
  const int taken = std::clamp(count, 0, GetLength() - from);
  if (taken == GetLength()) return *this;
  return CStringUTF8(data_ + from, taken);
}

CStringUTF8 CStringUTF8::Left(int count) const { return Mid(0, count); }

CStringUTF8 CStringUTF8::Right(int count) const {
  return Mid(GetLength() - ClipIndex(count, GetLength()));
}

char* CStringUTF8::GetBuffer(int min_length) {
  text_buffer::Reserve(data_, std::max(min_length, GetLength()));
  text_buffer::Header& header = text_buffer::HeaderOf(data_);
  if (header.references.load(std::memory_order_relaxed) != text_buffer::kLocked) {
    header.references.store(text_buffer::kLent, std::memory_order_relaxed);
  }
  return data_;
}

char* CStringUTF8::GetBufferSetLength(int length) {
  char* const buffer = GetBuffer(length);
  text_buffer::HeaderOf(data_).length = std::max(length, 0);
  buffer[std::max(length, 0)] = '\0';
  return buffer;
}

void CStringUTF8::ReleaseBuffer(int new_length) {
  if (!text_buffer::IsWritable(data_)) {
    // Nothing was lent; what can still be done is to cut the text.
    if (new_length >= 0 && new_length < GetLength()) *this = Left(new_length);
    return;
  }
  const int capacity = text_buffer::HeaderOf(data_).capacity;
  if (new_length < 0) {
    const void* nul = std::memchr(data_, 0, static_cast<std::size_t>(capacity));
    new_length =
        nul == nullptr ? capacity : static_cast<int>(static_cast<const char*>(nul) - data_);
  }
  text_buffer::SetLength(data_, std::min(new_length, capacity));
}

void CStringUTF8::FreeExtra() {
  const text_buffer::Header& header = text_buffer::HeaderOf(data_);
  // Memory that the caller of GetBuffer or LockBuffer may still use stays where it is.
  const bool owned = header.references.load(std::memory_order_acquire) == 1;
  if (!owned || header.capacity - header.length < 16) return;
  char* const fitting = text_buffer::New(View());
  text_buffer::Release(data_);
  data_ = fitting;
}

char* CStringUTF8::LockBuffer() {
  text_buffer::Reserve(data_, GetLength());
  text_buffer::HeaderOf(data_).references.store(text_buffer::kLocked, std::memory_order_relaxed);
  return data_;
}

void CStringUTF8::UnlockBuffer() {
  auto& references = text_buffer::HeaderOf(data_).references;
  if (references.load(std::memory_order_relaxed) == text_buffer::kLocked) {
    references.store(1, std::memory_order_relaxed);
  }
}

CStringUTF8 make_str_from_char(char ch) { return CStringUTF8(&ch, 1); }

CStringUTF8 make_str_from_char_array(const char* text, int length) { return {text, length}; }

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

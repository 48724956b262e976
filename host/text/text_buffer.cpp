#include "host/text/text_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <new>
#include <stdexcept>

namespace vela::host {

constinit EmptyText empty_text = {{text_buffer::kStatic, 0, 0, 0}, {}};

namespace text_buffer {
namespace {

void CopyBytes(char* to, std::string_view from) {
  if (!from.empty()) std::memcpy(to, from.data(), from.size());
}

bool IsPartOf(std::string_view part, const char* text) {
  const char* end = text + HeaderOf(text).capacity + 1;
  return !part.empty() && std::less_equal<>()(text, part.data()) && std::less<>()(part.data(), end);
}

bool HasRoom(const char* text, std::int64_t length) {
  return IsWritable(text) && length <= HeaderOf(text).capacity;
}

// Room for appending once more about half of what is there.
std::int64_t GrownCapacity(std::int64_t old_length, std::int64_t length) {
  return std::clamp(old_length + old_length / 2, length, kMaxLength);
}

}  // namespace

char* Allocate(std::int64_t length, std::int64_t capacity) {
  if (capacity > kMaxLength) throw std::length_error("text is too long");
  // Whole blocks of 16 bytes, terminator included.
  const auto bytes = (static_cast<std::size_t>(capacity) + 16) & ~std::size_t{15};
  void* memory = std::malloc(sizeof(Header) + bytes);
  if (memory == nullptr) throw std::bad_alloc();
  const auto room = std::min(static_cast<std::int64_t>(bytes) - 1, kMaxLength);
  auto* header =
      new (memory) Header{1, static_cast<std::int32_t>(length), static_cast<std::int32_t>(room), 0};
  char* text = reinterpret_cast<char*>(header + 1);
  // Room that a caller may take over shows no bytes that some other text left behind.
  std::memset(text + length, 0, static_cast<std::size_t>(room - length) + 1);
  return text;
}

char* New(std::string_view text) {
  if (text.empty()) return Empty();
  const auto length = static_cast<std::int64_t>(text.size());
  char* copy = Allocate(length, length);
  CopyBytes(copy, text);
  return copy;
}

char* PlaceInBlock(Block& block, std::size_t offset, std::string_view text) {
  const std::size_t bytes = BytesInBlock(text) - sizeof(Header);
  char* const place = reinterpret_cast<char*>(&block) + offset;
  auto* header =
      new (place) Header{1, static_cast<std::int32_t>(text.size()),
                         static_cast<std::int32_t>(bytes - 1), static_cast<std::int32_t>(offset)};
  char* const copy = reinterpret_cast<char*>(header + 1);
  // The zeros after the text, then the text.
  std::memset(copy + bytes - 16, 0, 16);
  CopyBytes(copy, text);
  return copy;
}

void Forget(Block& block, std::int32_t texts) noexcept {
  if (block.texts.fetch_sub(texts, std::memory_order_acq_rel) == texts) std::free(&block);
}

char* Share(char* text) {
  auto& references = HeaderOf(text).references;
  const std::int32_t state = references.load(std::memory_order_relaxed);
  if (state == kStatic) return text;
  if (state < 0) return New(View(text));
  references.fetch_add(1, std::memory_order_relaxed);
  return text;
}

void Release(char* text) noexcept {
  auto& references = HeaderOf(text).references;
  const std::int32_t state = references.load(std::memory_order_acquire);
  if (state == kStatic) return;
  // A sole owner has nobody to race with.
  if (state > 1 && references.fetch_sub(1, std::memory_order_acq_rel) > 1) return;
  Header& header = HeaderOf(text);
  if (header.offset_in_block == 0) return std::free(&header);
  Forget(*reinterpret_cast<Block*>(reinterpret_cast<char*>(&header) - header.offset_in_block), 1);
}

bool IsWritable(const char* text) noexcept {
  const std::int32_t state = HeaderOf(text).references.load(std::memory_order_acquire);
  return state == 1 || state < 0;
}

void Reserve(char*& text, std::int64_t capacity) {
  if (HasRoom(text, capacity)) return;
  const std::string_view content = View(text);
  const auto length = static_cast<std::int64_t>(content.size());
  char* fresh = Allocate(length, std::max(capacity, length));
  CopyBytes(fresh, content);
  Adopt(text, fresh);
}

void SetLength(char* text, std::int64_t length) noexcept {
  Header& header = HeaderOf(text);
  header.length = static_cast<std::int32_t>(length);
  text[length] = '\0';
  if (header.references.load(std::memory_order_relaxed) == kLent) {
    header.references.store(1, std::memory_order_relaxed);
  }
}

void Adopt(char*& text, char* fresh) noexcept {
  if (HeaderOf(text).references.load(std::memory_order_relaxed) == kLocked) {
    HeaderOf(fresh).references.store(kLocked, std::memory_order_relaxed);
  }
  Release(text);
  text = fresh;
}

void Assign(char*& text, std::string_view content) {
  const auto length = static_cast<std::int64_t>(content.size());
  const bool locked = HeaderOf(text).references.load(std::memory_order_relaxed) == kLocked;
  if (HasRoom(text, length) && (length > 0 || locked)) {
    if (length > 0) std::memmove(text, content.data(), content.size());
    SetLength(text, length);
  } else if (locked) {
    char* fresh = Allocate(length, length);
    CopyBytes(fresh, content);
    Adopt(text, fresh);
  } else {
    char* fresh = New(content);
    Release(text);
    text = fresh;
  }
}

void Splice(char*& text, std::int64_t at, std::int64_t removed, std::string_view inserted) {
  const std::int64_t old_length = HeaderOf(text).length;
  const auto added = static_cast<std::int64_t>(inserted.size());
  const std::int64_t tail = old_length - at - removed;
  if (removed == 0 && added == 0) return;
  if (added > kMaxLength - old_length + removed) throw std::length_error("text is too long");
  const std::int64_t length = old_length - removed + added;
  // At the end nothing moves, so the text can even be appended to itself.
  const bool in_place = HasRoom(text, length) && (tail == 0 || !IsPartOf(inserted, text));
  if (in_place) {
    std::memmove(text + at + added, text + at + removed, static_cast<std::size_t>(tail));
    if (added > 0) std::memmove(text + at, inserted.data(), inserted.size());
    SetLength(text, length);
    return;
  }
  const bool grows = length > old_length && old_length > 0;
  char* fresh = Allocate(length, grows ? GrownCapacity(old_length, length) : length);
  CopyBytes(fresh, {text, static_cast<std::size_t>(at)});
  CopyBytes(fresh + at, inserted);
  CopyBytes(fresh + at + added, {text + at + removed, static_cast<std::size_t>(tail)});
  Adopt(text, fresh);
}

}  // namespace text_buffer
}  // namespace vela::host

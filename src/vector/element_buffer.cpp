#include "vector/element_buffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "frame/library_state.h"
#include "platform/large_pages.h"

namespace vela {

ElementBuffer::ElementBuffer(ElementBuffer&& other) noexcept
    : width_(other.width_),
      data_(std::exchange(other.data_, nullptr)),
      size_(std::exchange(other.size_, 0)),
      capacity_(std::exchange(other.capacity_, 0)),
      zeroed_(other.zeroed_) {}

ElementBuffer::~ElementBuffer() { std::free(data_); }

bool ElementBuffer::Resize(std::size_t count) {
  if (count > capacity_ || count < capacity_ / 2) {
    if (!Reallocate(count)) return false;
  }
  FillNew(count);
  return true;
}

bool ElementBuffer::MakeRoom(std::size_t count) {
  const std::size_t roomy = std::min(capacity_ + capacity_ / 2 + 8, kMostElements);
  return Reallocate(std::max(count, roomy)) || Reallocate(count);
}

bool ElementBuffer::Reserve(std::size_t count) {
  if (count <= capacity_) return true;
  if (data_ != nullptr) return Reallocate(count);
  // Not zeroed yet: little of it may come to be used.
  void* data = count > kMostElements ? nullptr : std::malloc(count * width_);
  if (data == nullptr) return false;
  Hold(data, count);
  return true;
}

bool ElementBuffer::ResizeForOverwrite(std::size_t count) {
  if (count > capacity_ || count < capacity_ / 2) {
    if (count > kMostElements) return false;
    void* data = count == 0 ? nullptr : std::malloc(count * width_);
    if (data == nullptr && count != 0) return false;
    std::free(data_);
    Hold(data, count);
  }
  size_ = count;
  zeroed_ = false;
  return true;
}

bool ElementBuffer::CopyFrom(const ElementBuffer& other) {
  if (!ResizeForOverwrite(other.size_)) return false;
  if (size_ > 0) std::memmove(data_, other.data_, size_ * width_);
  return true;
}

bool ElementBuffer::Reallocate(std::size_t capacity) {
  if (capacity > kMostElements) return false;
  if (capacity == 0) {
    std::free(data_);
    Hold(nullptr, 0);
  } else if (data_ == nullptr) {
    // Fresh zero pages come from the system without being touched.
    void* data = std::calloc(capacity, width_);
    if (data == nullptr) return false;
    Hold(data, capacity);
    zeroed_ = true;
  } else {
    void* data = std::realloc(data_, capacity * width_);
    if (data == nullptr) return false;
    Hold(data, capacity);
  }
  size_ = std::min(size_, capacity);
  return true;
}

void ElementBuffer::Hold(void* data, std::size_t capacity) {
  data_ = static_cast<std::byte*>(data);
  capacity_ = capacity;
  platform::PreferLargePages(data, capacity * width_);
}

void ElementBuffer::FillNew(std::size_t count) {
  if (count > size_ && (IsDebugMode() || !zeroed_)) {
    std::memset(data_ + size_ * width_, IsDebugMode() ? 0xCC : 0, (count - size_) * width_);
  }
  zeroed_ = false;
  size_ = count;
}

}  // namespace vela

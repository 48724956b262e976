// The storage of one vector row: a contiguous, growable run of trivially copyable elements.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <span>
#include <type_traits>
#include <utility>

#include "frame/library_state.h"
#include "platform/large_pages.h"

namespace vela {

// New elements are zero, or 0xCC bytes in debug mode. No operation throws; one that cannot get its
// memory returns false and changes nothing.
template <class T>
class ElementBuffer {
  static_assert(std::is_trivially_copyable_v<T>);

 public:
  // Sizes are ints to scripts.
  static constexpr std::size_t kMostElements = std::numeric_limits<int>::max();

  ElementBuffer() = default;
  ElementBuffer(ElementBuffer&& other) noexcept { Swap(other); }
  ElementBuffer& operator=(ElementBuffer&& other) noexcept {
    Swap(other);
    return *this;
  }
  ~ElementBuffer() { std::free(data_); }

  std::size_t size() const { return size_; }
  std::span<T> Elements() { return {data_, size_}; }
  std::span<const T> Elements() const { return {data_, size_}; }

  // Sets the size to exactly count, keeping what fits. Memory is exact too, so that a vector sized
  // once holds no slack.
  bool Resize(std::size_t count) {
    if (count > capacity_ || count < capacity_ / 2) {
      if (!Reallocate(count)) return false;
    }
    FillNew(count);
    return true;
  }

  // As Resize, but leaves room to grow where there is memory for it, so that appending one at a
  // time is linear overall.
  bool Grow(std::size_t count) {
    if (count > capacity_) {
      const std::size_t roomy = std::min(capacity_ + capacity_ / 2 + 8, kMostElements);
      if (!Reallocate(std::max(count, roomy)) && !Reallocate(count)) return false;
    }
    FillNew(count);
    return true;
  }

  // Makes room for count elements without changing the size.
  bool Reserve(std::size_t count) {
    if (count <= capacity_) return true;
    if (data_ != nullptr) return Reallocate(count);
    // Not zeroed yet: little of it may come to be used.
    void* data = count > kMostElements ? nullptr : std::malloc(count * sizeof(T));
    if (data == nullptr) return false;
    Hold(data, count);
    return true;
  }

  // Resizes without keeping the contents, which are then unspecified: for a caller that writes
  // every element.
  bool ResizeForOverwrite(std::size_t count) {
    if (count > capacity_ || count < capacity_ / 2) {
      if (count > kMostElements) return false;
      void* data = count == 0 ? nullptr : std::malloc(count * sizeof(T));
      if (data == nullptr && count != 0) return false;
      std::free(data_);
      Hold(data, count);
    }
    size_ = count;
    return true;
  }

  bool CopyFrom(std::span<const T> elements) {
    if (!ResizeForOverwrite(elements.size())) return false;
    if (!elements.empty()) std::memmove(data_, elements.data(), elements.size_bytes());
    return true;
  }

  void Swap(ElementBuffer& other) noexcept {
    std::swap(data_, other.data_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }

 private:
  bool Reallocate(std::size_t capacity) {
    if (capacity > kMostElements) return false;
    if (capacity == 0) {
      std::free(data_);
      Hold(nullptr, 0);
    } else if (data_ == nullptr) {
      // Fresh zero pages come from the system without being touched.
      void* data = std::calloc(capacity, sizeof(T));
      if (data == nullptr) return false;
      Hold(data, capacity);
      zeroed_ = true;
    } else {
      void* data = std::realloc(static_cast<void*>(data_), capacity * sizeof(T));
      if (data == nullptr) return false;
      Hold(data, capacity);
    }
    size_ = std::min(size_, capacity);
    return true;
  }

  void Hold(void* data, std::size_t capacity) {
    data_ = static_cast<T*>(data);
    capacity_ = capacity;
    platform::PreferLargePages(data, capacity * sizeof(T));
  }

  void FillNew(std::size_t count) {
    if (count > size_ && (IsDebugMode() || !zeroed_)) {
      std::memset(static_cast<void*>(data_ + size_), IsDebugMode() ? 0xCC : 0,
                  (count - size_) * sizeof(T));
    }
    zeroed_ = false;
    size_ = count;
  }

  T* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  bool zeroed_ = false;  // data_ was just allocated, all zero
};

}  // namespace vela

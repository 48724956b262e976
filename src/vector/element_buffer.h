// The storage of one vector row: a contiguous, growable run of trivially copyable elements.
#pragma once

#include <cstddef>
#include <limits>
#include <span>

namespace vela {

// Counts elements of one width. New elements are zero, or 0xCC bytes in debug mode. No operation
// throws; one that cannot get its memory returns false and changes nothing.
class ElementBuffer {
 public:
  // Sizes are ints to scripts.
  static constexpr std::size_t kMostElements = std::numeric_limits<int>::max();

  explicit ElementBuffer(std::size_t width) : width_(width) {}
  ElementBuffer(ElementBuffer&& other) noexcept;
  ElementBuffer(const ElementBuffer&) = delete;
  ElementBuffer& operator=(const ElementBuffer&) = delete;
  ~ElementBuffer();

  void* Data() { return data_; }
  const void* Data() const { return data_; }
  std::size_t size() const { return size_; }

  // Sets the size to exactly count, keeping what fits. Memory is exact too, so that a vector sized
  // once holds no slack.
  bool Resize(std::size_t count);
  // As Resize, but leaves room to grow where there is memory for it, so that appending one at a
  // time is linear overall.
  bool Grow(std::size_t count) {
    if (count > capacity_ && !MakeRoom(count)) return false;
    FillNew(count);
    return true;
  }
  // Makes room for count elements without changing the size.
  bool Reserve(std::size_t count);
  // Resizes without keeping the contents, which are then unspecified: for a caller that writes
  // every element.
  bool ResizeForOverwrite(std::size_t count);
  bool CopyFrom(const ElementBuffer& other);

 private:
  bool MakeRoom(std::size_t count);
  bool Reallocate(std::size_t capacity);
  void Hold(void* data, std::size_t capacity);
  void FillNew(std::size_t count);

  std::size_t width_;
  std::byte* data_ = nullptr;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
  bool zeroed_ = false;  // data_ was just allocated, all zero
};

}  // namespace vela

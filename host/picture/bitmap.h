// Bitmaps whose pixels the host reads and writes.
#pragma once

#include <cstdint>

#include "platform/picture.h"

namespace vela::host {

// Owns a bitmap of pixels 0x00RRGGBB, rows from the top without gaps.
class Bitmap {
 public:
  Bitmap() = default;
  // White. Empty for a size that is none of an image and without memory.
  Bitmap(int width, int height);
  ~Bitmap();
  Bitmap(Bitmap&& other) noexcept;
  Bitmap& operator=(Bitmap&& other) noexcept;

  explicit operator bool() const { return handle_ != nullptr; }
  HBITMAP Handle() const { return handle_; }
  // Hands the bitmap over.
  HBITMAP Detach();
  int Width() const { return width_; }
  int Height() const { return height_; }
  // Completes what is being drawn on the bitmap first.
  std::uint32_t* Pixels() const;

 private:
  HBITMAP handle_ = nullptr;
  std::uint32_t* pixels_ = nullptr;
  int width_ = 0;
  int height_ = 0;
};

}  // namespace vela::host

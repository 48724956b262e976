#include "host/picture/bitmap.h"

#include <algorithm>
#include <utility>

#include "host/picture/image_codec.h"

namespace vela::host {

Bitmap::Bitmap(int width, int height) {
  if (!IsImageSize(width, height)) return;
  BITMAPINFO info = {};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* pixels = nullptr;
  handle_ = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &pixels, nullptr, 0);
  if (handle_ == nullptr) return;
  pixels_ = static_cast<std::uint32_t*>(pixels);
  width_ = width;
  height_ = height;
  std::fill_n(pixels_, std::size_t{static_cast<unsigned>(width)} * static_cast<unsigned>(height),
              0xFFFFFFu);
}

Bitmap::~Bitmap() {
  if (handle_ != nullptr) DeleteObject(handle_);
}

Bitmap::Bitmap(Bitmap&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)),
      pixels_(std::exchange(other.pixels_, nullptr)),
      width_(std::exchange(other.width_, 0)),
      height_(std::exchange(other.height_, 0)) {}

Bitmap& Bitmap::operator=(Bitmap&& other) noexcept {
  std::swap(handle_, other.handle_);
  std::swap(pixels_, other.pixels_);
  std::swap(width_, other.width_);
  std::swap(height_, other.height_);
  return *this;
}

HBITMAP Bitmap::Detach() {
  pixels_ = nullptr;
  return std::exchange(handle_, nullptr);
}

std::uint32_t* Bitmap::Pixels() const {
  GdiFlush();
  return pixels_;
}

}  // namespace vela::host

// Bitmaps and icons.
#if !defined(_WIN32)

#include <cstring>
#include <new>

#include "platform/picture/drawing_objects.h"

namespace vela::picture {

namespace {

constexpr int kMostPixels = 32767;  // in a row or column
constexpr std::uint32_t kWhite = 0xFFFFFF;

int WidthOf(const Surface& image) { return cairo_image_surface_get_width(image.get()); }
int HeightOf(const Surface& image) { return cairo_image_surface_get_height(image.get()); }

// From rows of bits, the highest of a byte first, or of words.
void ReadBits(const Surface& image, const void* bits, int bits_per_pixel) {
  const int width = WidthOf(image);
  const std::size_t stride = (static_cast<std::size_t>(width) * bits_per_pixel + 15) / 16 * 2;
  const auto* row = static_cast<const unsigned char*>(bits);
  for (int y = 0; y < HeightOf(image); ++y, row += stride) {
    std::uint32_t* const pixels = PixelRow(image, y);
    if (bits_per_pixel == 32) {
      std::memcpy(pixels, row, stride);
      continue;
    }
    for (int x = 0; x < width; ++x) pixels[x] = (row[x / 8] >> (7 - x % 8) & 1) != 0 ? kWhite : 0;
  }
}

bool HasAlpha(const Surface& image) {
  for (int y = 0; y < HeightOf(image); ++y) {
    const std::uint32_t* const pixels = PixelRow(image, y);
    for (int x = 0; x < WidthOf(image); ++x) {
      if (pixels[x] >> 24 != 0) return true;
    }
  }
  return false;
}

// Cairo wants each colour multiplied by the alpha.
std::uint32_t Premultiplied(std::uint32_t color, std::uint32_t alpha) {
  const auto scaled = [&](int shift) {
    return ((color >> shift & 0xFF) * alpha + 127) / 255 << shift;
  };
  return alpha << 24 | scaled(16) | scaled(8) | scaled(0);
}

Surface IconImage(const Bitmap& mask, const Bitmap& color) {
  const int width = WidthOf(color.surface), height = HeightOf(color.surface);
  if (WidthOf(mask.surface) != width || HeightOf(mask.surface) != height) return nullptr;
  Surface image = NewImage(CAIRO_FORMAT_ARGB32, width, height);
  if (image == nullptr) return nullptr;
  const bool has_alpha = HasAlpha(color.surface);
  for (int y = 0; y < height; ++y) {
    const std::uint32_t* const hidden = PixelRow(mask.surface, y);
    const std::uint32_t* const shown = PixelRow(color.surface, y);
    std::uint32_t* const pixels = PixelRow(image, y);
    for (int x = 0; x < width; ++x) {
      const std::uint32_t alpha = has_alpha ? shown[x] >> 24 : 0xFF;
      pixels[x] = (hidden[x] & kWhite) != 0 ? 0 : Premultiplied(shown[x], alpha);
    }
  }
  cairo_surface_mark_dirty(image.get());
  return image;
}

HBITMAP NewBitmap(int width, int height, int bits_per_pixel, const void* bits, void** memory) {
  Surface image = NewImage(CAIRO_FORMAT_RGB24, width, height);
  if (image == nullptr) return nullptr;
  if (bits != nullptr) ReadBits(image, bits, bits_per_pixel);
  if (memory != nullptr) *memory = PixelRow(image, 0);
  return static_cast<HBITMAP>(
      AddHandle(std::make_shared<Bitmap>(std::move(image), bits_per_pixel)));
}

}  // namespace

Surface NewImage(cairo_format_t format, int width, int height) {
  if (width < 1 || height < 1 || width > kMostPixels || height > kMostPixels) return nullptr;
  Surface image(cairo_image_surface_create(format, width, height));
  return cairo_surface_status(image.get()) == CAIRO_STATUS_SUCCESS ? std::move(image) : nullptr;
}

std::uint32_t* PixelRow(const Surface& image, int row) {
  unsigned char* const first = cairo_image_surface_get_data(image.get());
  const std::ptrdiff_t stride = cairo_image_surface_get_stride(image.get());
  return reinterpret_cast<std::uint32_t*>(first + row * stride);
}

}  // namespace vela::picture

HBITMAP CreateBitmap(int width, int height, UINT planes, UINT bits_per_pixel,
                     const void* bits) try {
  if (planes != 1 || (bits_per_pixel != 1 && bits_per_pixel != 32)) return nullptr;
  return vela::picture::NewBitmap(width, height, static_cast<int>(bits_per_pixel), bits, nullptr);
} catch (const std::bad_alloc&) {
  return nullptr;
}

HBITMAP CreateDIBSection(HDC, const BITMAPINFO* info, UINT usage, void** bits, HANDLE section,
                         DWORD) try {
  if (info == nullptr || bits == nullptr || usage != DIB_RGB_COLORS || section != nullptr) {
    return nullptr;
  }
  const BITMAPINFOHEADER& header = info->bmiHeader;
  if (header.biSize != sizeof header || header.biPlanes != 1 || header.biBitCount != 32 ||
      header.biCompression != BI_RGB || header.biHeight >= 0) {
    return nullptr;
  }
  const std::int64_t height = -std::int64_t{header.biHeight};
  if (height > vela::picture::kMostPixels) return nullptr;
  return vela::picture::NewBitmap(header.biWidth, static_cast<int>(height), 32, nullptr, bits);
} catch (const std::bad_alloc&) {
  return nullptr;
}

HICON CreateIconIndirect(ICONINFO* info) try {
  using namespace vela::picture;
  if (info == nullptr) return nullptr;
  const auto mask = Find<Bitmap>(info->hbmMask);
  const auto color = Find<Bitmap>(info->hbmColor);
  if (mask == nullptr || color == nullptr || mask->bits_per_pixel != 1) return nullptr;
  Surface image = IconImage(*mask, *color);
  if (image == nullptr) return nullptr;
  return static_cast<HICON>(AddHandle(std::make_shared<Icon>(std::move(image))));
} catch (const std::bad_alloc&) {
  return nullptr;
}

BOOL DestroyIcon(HICON icon) {
  using namespace vela::picture;
  return TakeHandle(icon, kIconKind) != nullptr;
}

#endif

// Image files by gdk-pixbuf and Cairo.
#if !defined(_WIN32)

#include <cairo.h>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <memory>

#include "host/picture/image_codec.h"

namespace vela::host {
namespace {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
using Loader = std::unique_ptr<GdkPixbufLoader, Unref>;

const char* LoaderName(ImageFormat format) {
  switch (format) {
    case ImageFormat::kPng:
      return "png";
    case ImageFormat::kJpeg:
      return "jpeg";
    case ImageFormat::kBmp:
      return "bmp";
    case ImageFormat::kGif:
      return "gif";
    default:
      return "tiff";
  }
}

// An empty size ends the loading before anything of it is allocated.
void RefuseLargeSize(GdkPixbufLoader* loader, int width, int height, gpointer) {
  if (!IsImageSize(width, height)) gdk_pixbuf_loader_set_size(loader, 0, 0);
}

// A damaged file is for the caller to report; the library would write to standard error of some.
void KeepQuiet() {
  constexpr auto kLevels = static_cast<GLogLevelFlags>(G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING);
  constexpr auto ignore = [](const char*, GLogLevelFlags, const char*, gpointer) {};
  static const guint handler = g_log_set_handler("GdkPixbuf", kLevels, ignore, nullptr);
  static_cast<void>(handler);
}

bool Read(GdkPixbufLoader* loader, Bytes file) {
  const bool written = gdk_pixbuf_loader_write(loader, file.data(), file.size(), nullptr) != 0;
  // To be closed in any case.
  return gdk_pixbuf_loader_close(loader, nullptr) != 0 && written;
}

void CopyPixels(const GdkPixbuf* image, std::uint32_t* pixels) {
  const int width = gdk_pixbuf_get_width(image), height = gdk_pixbuf_get_height(image);
  const int channels = gdk_pixbuf_get_n_channels(image);
  const std::ptrdiff_t stride = gdk_pixbuf_get_rowstride(image);
  const guint8* row = gdk_pixbuf_read_pixels(image);
  for (int y = 0; y < height; ++y, row += stride) {
    const guint8* from = row;
    for (int x = 0; x < width; ++x, from += channels) {
      const std::uint32_t alpha = channels == 4 ? from[3] : 0xFF;
      *pixels++ =
          alpha << 24 | std::uint32_t{from[0]} << 16 | std::uint32_t{from[1]} << 8 | from[2];
    }
  }
}

cairo_status_t Append(void* file, const unsigned char* data, unsigned length) {
  static_cast<std::string*>(file)->append(reinterpret_cast<const char*>(data), length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

bool DecodeImage(ImageFormat format, Bytes file, const NewPixels& new_pixels) {
  KeepQuiet();
  const Loader loader(gdk_pixbuf_loader_new_with_type(LoaderName(format), nullptr));
  if (loader == nullptr) return false;
  g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(RefuseLargeSize), nullptr);
  if (!Read(loader.get(), file)) return false;
  const GdkPixbuf* const image = gdk_pixbuf_loader_get_pixbuf(loader.get());
  if (image == nullptr) return false;
  const int width = gdk_pixbuf_get_width(image), height = gdk_pixbuf_get_height(image);
  if (!IsImageSize(width, height)) return false;
  std::uint32_t* const pixels = new_pixels(width, height);
  if (pixels == nullptr) return false;
  CopyPixels(image, pixels);
  return true;
}

std::string EncodePng(const std::uint32_t* pixels, int width, int height) {
  // Cairo only reads what it encodes.
  auto* const data = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels));
  cairo_surface_t* const surface =
      cairo_image_surface_create_for_data(data, CAIRO_FORMAT_RGB24, width, height, width * 4);
  std::string file;
  const bool done =
      cairo_surface_write_to_png_stream(surface, Append, &file) == CAIRO_STATUS_SUCCESS;
  cairo_surface_destroy(surface);
  return done ? file : std::string();
}

}  // namespace vela::host

#endif

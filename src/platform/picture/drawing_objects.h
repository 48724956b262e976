// The drawing objects behind the handles, over Cairo.
#pragma once

#if !defined(_WIN32)

#include <cairo.h>
#include <memory>

#include "platform/picture/handle_table.h"

namespace vela::picture {

struct DestroySurface {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
using Surface = std::unique_ptr<cairo_surface_t, DestroySurface>;

struct DestroyContext {
  void operator()(cairo_t* context) const { cairo_destroy(context); }
};
using Context = std::unique_ptr<cairo_t, DestroyContext>;

// Black pixels in memory; null for sides outside 1 .. 32767 and without memory.
Surface NewImage(cairo_format_t format, int width, int height);
// Ready for direct access; rows are cairo_image_surface_get_stride bytes apart.
std::uint32_t* PixelRow(const Surface& image, int row);

// Before an image is drawn from or on: its pixels may have been written in memory, of which Cairo
// knows nothing.
inline void ReadAgain(cairo_surface_t* surface) {
  if (cairo_surface_get_type(surface) == CAIRO_SURFACE_TYPE_IMAGE) {
    cairo_surface_mark_dirty(surface);
  }
}

struct Bitmap : DrawingObject {
  Bitmap(Surface image, int bits)
      : DrawingObject(OBJ_BITMAP), surface(std::move(image)), bits_per_pixel(bits) {}
  Surface surface;  // RGB24, black and white for one bit
  const int bits_per_pixel;
};

struct Icon : DrawingObject {
  explicit Icon(Surface image) : DrawingObject(kIconKind), surface(std::move(image)) {}
  Surface surface;  // ARGB32
};

// A recording and the rectangle of it that is shown; an empty one stands for what its picture says.
struct Metafile : DrawingObject {
  Metafile(DWORD object_kind, Surface drawing)
      : DrawingObject(object_kind), surface(std::move(drawing)) {}
  Surface surface;
  double left = 0, top = 0, width = 0, height = 0;  // in the units of the recording
};

struct Pen : DrawingObject {
  Pen() : DrawingObject(OBJ_PEN) {}
  COLORREF color = 0;
  int width = 1;
};

struct DeviceContext : DrawingObject {
  using DrawingObject::DrawingObject;
  Context context;                   // null while there is nothing to draw on
  std::shared_ptr<Bitmap> bitmap;    // of a memory device context
  std::shared_ptr<Metafile> record;  // of a recording one
  std::shared_ptr<Pen> pen;          // null: black, one unit wide
  HGDIOBJ bitmap_handle = nullptr;
  HGDIOBJ pen_handle = nullptr;
  POINT position = {};
  int map_mode = MM_TEXT;
  int stretch_mode = COLORONCOLOR;
};

// Pixels to HIMETRIC at 96 per inch, rounded.
constexpr LONG HimetricOf(int pixels) {
  return static_cast<LONG>((std::int64_t{pixels} * 2540 + 48) / 96);
}

}  // namespace vela::picture

#endif

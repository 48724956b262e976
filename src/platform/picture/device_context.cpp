// Device contexts: what is drawn on, and drawing on it.
#if !defined(_WIN32)

#include <new>
#include <utility>

#include "platform/picture/drawing_objects.h"

namespace vela::picture {
namespace {

HGDIOBJ SelectBitmap(DeviceContext& dc, HGDIOBJ handle, std::shared_ptr<Bitmap> bitmap) {
  if (dc.kind != OBJ_MEMDC) return nullptr;
  Context context(cairo_create(bitmap->surface.get()));
  if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
  dc.context = std::move(context);
  dc.bitmap = std::move(bitmap);
  return std::exchange(dc.bitmap_handle, handle);
}

void SetColor(cairo_t* context, COLORREF color) {
  const auto part = [color](int shift) { return (color >> shift & 0xFF) / 255.0; };
  cairo_set_source_rgb(context, part(0), part(8), part(16));
}

// Lines cover whole pixels, whose centres they run through.
void DrawLine(cairo_t* context, COLORREF color, int width, POINT from, POINT to) {
  constexpr double kCentre = 0.5;
  ReadAgain(cairo_get_target(context));
  SetColor(context, color);
  cairo_set_antialias(context, CAIRO_ANTIALIAS_NONE);
  cairo_set_line_width(context, width);
  cairo_move_to(context, from.x + kCentre, from.y + kCentre);
  cairo_line_to(context, to.x + kCentre, to.y + kCentre);
  cairo_stroke(context);
}

}  // namespace
}  // namespace vela::picture

using vela::picture::AddHandle;
using vela::picture::Bitmap;
using vela::picture::DeviceContext;
using vela::picture::Find;
using vela::picture::Pen;
using vela::picture::TakeHandle;

HDC CreateCompatibleDC(HDC) try {
  return static_cast<HDC>(AddHandle(std::make_shared<DeviceContext>(OBJ_MEMDC)));
} catch (const std::bad_alloc&) {
  return nullptr;
}

BOOL DeleteDC(HDC dc) { return TakeHandle(dc, OBJ_MEMDC) != nullptr; }

HGDIOBJ SelectObject(HDC handle, HGDIOBJ object) {
  const auto dc = Find<DeviceContext>(handle);
  if (dc == nullptr) return nullptr;
  if (auto bitmap = Find<Bitmap>(object))
    return vela::picture::SelectBitmap(*dc, object, std::move(bitmap));
  auto pen = Find<Pen>(object);
  if (pen == nullptr && object != nullptr) return nullptr;
  dc->pen = std::move(pen);
  return std::exchange(dc->pen_handle, object);
}

HPEN CreatePen(int style, int width, COLORREF color) try {
  if (style != PS_SOLID) return nullptr;
  const auto pen = std::make_shared<Pen>();
  pen->color = color;
  pen->width = width > 1 ? width : 1;
  return static_cast<HPEN>(AddHandle(pen));
} catch (const std::bad_alloc&) {
  return nullptr;
}

BOOL MoveToEx(HDC handle, int x, int y, POINT* previous) {
  const auto dc = Find<DeviceContext>(handle);
  if (dc == nullptr) return 0;
  const POINT old = std::exchange(dc->position, POINT{x, y});
  if (previous != nullptr) *previous = old;
  return 1;
}

BOOL LineTo(HDC handle, int x, int y) try {
  const auto dc = Find<DeviceContext>(handle);
  if (dc == nullptr || dc->context == nullptr) return 0;
  const POINT to = {x, y};
  const COLORREF color = dc->pen != nullptr ? dc->pen->color : 0;
  const int width = dc->pen != nullptr ? dc->pen->width : 1;
  vela::picture::DrawLine(dc->context.get(), color, width, dc->position, to);
  dc->position = to;
  return cairo_status(dc->context.get()) == CAIRO_STATUS_SUCCESS;
} catch (const std::bad_alloc&) {
  return 0;
}

int SetMapMode(HDC handle, int mode) {
  const auto dc = Find<DeviceContext>(handle);
  if (dc == nullptr || (mode != MM_TEXT && mode != MM_ANISOTROPIC)) return 0;
  return std::exchange(dc->map_mode, mode);
}

int SetStretchBltMode(HDC handle, int mode) {
  const auto dc = Find<DeviceContext>(handle);
  if (dc == nullptr || (mode != COLORONCOLOR && mode != HALFTONE)) return 0;
  return std::exchange(dc->stretch_mode, mode);
}

int GetDeviceCaps(HDC handle, int what) {
  if (Find<DeviceContext>(handle) == nullptr) return 0;
  switch (what) {
    case HORZSIZE:
    case VERTSIZE:
      return 254;
    case HORZRES:
    case VERTRES:
      return 960;
    default:
      return 0;
  }
}

// Image surfaces are drawn on at once.
BOOL GdiFlush() { return 1; }

#endif

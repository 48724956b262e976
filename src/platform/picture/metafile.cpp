// Metafiles: recorded drawings.
#if !defined(_WIN32)

#include <new>

#include "platform/picture/drawing_objects.h"

namespace vela::picture {
namespace {

// A device context that records into a new metafile of that kind.
HDC Record(DWORD context_kind, DWORD metafile_kind) {
  const auto dc = std::make_shared<DeviceContext>(context_kind);
  Surface drawing(cairo_recording_surface_create(CAIRO_CONTENT_COLOR_ALPHA, nullptr));
  dc->context.reset(cairo_create(drawing.get()));
  if (cairo_status(dc->context.get()) != CAIRO_STATUS_SUCCESS) return nullptr;
  dc->record = std::make_shared<Metafile>(metafile_kind, std::move(drawing));
  return static_cast<HDC>(AddHandle(dc));
}

void* Close(HDC handle, DWORD context_kind) {
  const auto object = TakeHandle(handle, context_kind);
  if (object == nullptr) return nullptr;
  auto& dc = static_cast<DeviceContext&>(*object);
  dc.context.reset();
  return AddHandle(std::move(dc.record));
}

// The frame in pixels: HIMETRIC at 96 per inch.
void SetFrame(Metafile& metafile, const RECT& frame) {
  constexpr double kPixels = 96.0 / 2540;
  metafile.left = frame.left * kPixels;
  metafile.top = frame.top * kPixels;
  metafile.width = (static_cast<double>(frame.right) - frame.left) * kPixels;
  metafile.height = (static_cast<double>(frame.bottom) - frame.top) * kPixels;
}

}  // namespace
}  // namespace vela::picture

using vela::picture::DeviceContext;
using vela::picture::Find;
using vela::picture::Metafile;
using vela::picture::TakeHandle;

HDC CreateMetaFileW(LPCWSTR file) try {
  return file == nullptr ? vela::picture::Record(OBJ_METADC, OBJ_METAFILE) : nullptr;
} catch (const std::bad_alloc&) {
  return nullptr;
}

HMETAFILE CloseMetaFile(HDC dc) {
  return static_cast<HMETAFILE>(vela::picture::Close(dc, OBJ_METADC));
}

BOOL DeleteMetaFile(HMETAFILE metafile) { return TakeHandle(metafile, OBJ_METAFILE) != nullptr; }

BOOL SetWindowExtEx(HDC handle, int width, int height, SIZE* previous) {
  const auto dc = Find<DeviceContext>(handle);
  if (dc == nullptr || dc->record == nullptr || dc->map_mode != MM_ANISOTROPIC) return 0;
  Metafile& metafile = *dc->record;
  if (previous != nullptr) {
    *previous = {static_cast<LONG>(metafile.width), static_cast<LONG>(metafile.height)};
  }
  metafile.width = width;
  metafile.height = height;
  return 1;
}

HDC CreateEnhMetaFileW(HDC, LPCWSTR file, const RECT* frame, LPCWSTR) try {
  if (file != nullptr) return nullptr;
  const HDC handle = vela::picture::Record(OBJ_ENHMETADC, OBJ_ENHMETAFILE);
  const auto dc = Find<DeviceContext>(handle);
  if (dc != nullptr && frame != nullptr) vela::picture::SetFrame(*dc->record, *frame);
  return handle;
} catch (const std::bad_alloc&) {
  return nullptr;
}

HENHMETAFILE CloseEnhMetaFile(HDC handle) {
  if (const auto dc = Find<DeviceContext>(handle); dc != nullptr && dc->record != nullptr) {
    Metafile& metafile = *dc->record;
    if (metafile.width == 0 && metafile.height == 0) {
      cairo_recording_surface_ink_extents(metafile.surface.get(), &metafile.left, &metafile.top,
                                          &metafile.width, &metafile.height);
    }
  }
  return static_cast<HENHMETAFILE>(vela::picture::Close(handle, OBJ_ENHMETADC));
}

BOOL DeleteEnhMetaFile(HENHMETAFILE metafile) {
  return TakeHandle(metafile, OBJ_ENHMETAFILE) != nullptr;
}

#endif

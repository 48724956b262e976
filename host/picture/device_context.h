// The host's device context (type id 105): an image that pictures are drawn on.
#pragma once

#include "frame/interface/tessel_object.h"
#include "host/picture/bitmap.h"

namespace vela::host {

// Colours are 0xRRGGBB; pixels count from the top left corner.
class VELAHOST_API DeviceContext : public TesselCObject {
 public:
  DeviceContext();
  ~DeviceContext() override;

  const char* GetTCTypeName() const override { return "DeviceContext"; }
  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;
  // The device context itself (HDC) for type id 105; null before the image has a size.
  void* GetArgObjectPtrMSO(const MSOINDICES* at, unsigned type_id) override;

  // Makes the image white and of the size in pixels; status 8 for a size that it cannot have.
  int SetSize(CTCall* call);
  int GetWidth(CTCall* call);
  int GetHeight(CTCall* call);
  // Fills the image with a colour.
  int Clear(CTCall* call);
  // Draws a line: x and y of both ends, colour, width in pixels.
  int Line(CTCall* call);
  // The colour of the pixel at x, y; -1 outside the image.
  int GetPixel(CTCall* call);
  // Writes the image as a PNG file: 1, or 0 when that fails.
  int Save(CTCall* call);

  // The image; empty before it has a size.
  const Bitmap& Image() const { return bitmap_; }
  // False, and nothing done, for a size that it cannot have.
  bool Resize(int width, int height);

 private:
  void Close();

  Bitmap bitmap_;
  HDC dc_ = nullptr;
};

// Selects a pen into a device context for a scope. The colour is 0xRRGGBB.
class SelectedPen {
 public:
  SelectedPen(HDC dc, int color, int width);
  ~SelectedPen();
  SelectedPen(const SelectedPen&) = delete;
  SelectedPen& operator=(const SelectedPen&) = delete;

 private:
  HDC dc_;
  HPEN pen_;
  HGDIOBJ previous_;
};

}  // namespace vela::host

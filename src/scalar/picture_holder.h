// A picture, made from a drawing's handle, and drawn.
#pragma once

#include "platform/picture.h"

namespace vela {

// Holds one reference of a picture, or none.
class PictureHolder {
 public:
  PictureHolder() = default;
  // Takes over the reference given.
  explicit PictureHolder(IPicture* picture) : picture_(picture) {}
  ~PictureHolder() { Clear(); }
  PictureHolder(PictureHolder&& other) noexcept : picture_(other.Detach()) {}
  PictureHolder& operator=(PictureHolder&& other) noexcept;

  // With a reference of its own.
  static PictureHolder Share(IPicture* picture);
  // The picture behind an automation object; empty when there is none.
  static PictureHolder FromDispatch(IDispatch* dispatch);

  IPicture* Get() const { return picture_; }
  // Where the pointer is kept.
  IPicture** Address() { return &picture_; }
  explicit operator bool() const { return picture_ != nullptr; }
  void Clear();

  // New pictures, empty where the handle is none of its kind. With own, the picture deletes the
  // drawing when it dies; an empty one leaves it to the caller. Extents are HIMETRIC.
  static PictureHolder FromBitmap(HBITMAP bitmap, bool own);
  static PictureHolder FromMetafile(HMETAFILE metafile, int x_extent, int y_extent, bool own);
  static PictureHolder FromEnhMetafile(HENHMETAFILE metafile, bool own);
  static PictureHolder FromIcon(HICON icon, bool own);

  // HIMETRIC; -1 without a picture.
  int Width() const;
  int Height() const;
  // Draws the whole picture over the destination; bounds is for metafiles. Nothing is drawn without
  // a picture or a device context, and where the destination has no area.
  void Render(HDC dc, const RECT& destination, const RECT& bounds) const;

 private:
  IPicture* Detach() noexcept;

  IPicture* picture_ = nullptr;
};

}  // namespace vela

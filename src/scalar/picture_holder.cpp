#include "scalar/picture_holder.h"

#include <cstdint>
#include <limits>
#include <utility>

namespace vela {
namespace {

PictureHolder Create(PICTDESC& description, int type, bool own) {
  description.cbSizeofstruct = sizeof description;
  description.picType = static_cast<UINT>(type);
  void* made = nullptr;
  if (FAILED(OleCreatePictureIndirect(&description, IID_IPicture, own, &made))) return {};
  return PictureHolder(static_cast<IPicture*>(made));
}

// The extent of a destination; 0 where it does not fit.
LONG Extent(LONG from, LONG to) {
  const std::int64_t extent = std::int64_t{to} - from;
  return extent == static_cast<LONG>(extent) ? static_cast<LONG>(extent) : 0;
}

}  // namespace

PictureHolder& PictureHolder::operator=(PictureHolder&& other) noexcept {
  // The new picture is in place before the old one goes, which may run code of its own.
  PictureHolder old(std::exchange(picture_, other.Detach()));
  return *this;
}

IPicture* PictureHolder::Detach() noexcept { return std::exchange(picture_, nullptr); }

void PictureHolder::Clear() {
  if (IPicture* const picture = Detach()) picture->Release();
}

PictureHolder PictureHolder::Share(IPicture* picture) {
  if (picture != nullptr) picture->AddRef();
  return PictureHolder(picture);
}

PictureHolder PictureHolder::FromDispatch(IDispatch* dispatch) {
  void* found = nullptr;
  if (dispatch == nullptr || FAILED(dispatch->QueryInterface(IID_IPicture, &found))) return {};
  return PictureHolder(static_cast<IPicture*>(found));
}

// Creation may take a handle of another kind for an empty drawing, hence the checks.
PictureHolder PictureHolder::FromBitmap(HBITMAP bitmap, bool own) {
  if (GetObjectType(bitmap) != OBJ_BITMAP) return {};
  PICTDESC description = {};
  description.bmp.hbitmap = bitmap;
  return Create(description, PICTYPE_BITMAP, own);
}

PictureHolder PictureHolder::FromMetafile(HMETAFILE metafile, int x_extent, int y_extent,
                                          bool own) {
  if (GetObjectType(metafile) != OBJ_METAFILE) return {};
  PICTDESC description = {};
  description.wmf.hmeta = metafile;
  description.wmf.xExt = x_extent;
  description.wmf.yExt = y_extent;
  return Create(description, PICTYPE_METAFILE, own);
}

PictureHolder PictureHolder::FromEnhMetafile(HENHMETAFILE metafile, bool own) {
  if (GetObjectType(metafile) != OBJ_ENHMETAFILE) return {};
  PICTDESC description = {};
  description.emf.hemf = metafile;
  return Create(description, PICTYPE_ENHMETAFILE, own);
}

PictureHolder PictureHolder::FromIcon(HICON icon, bool own) {
  PICTDESC description = {};
  description.icon.hicon = icon;
  PictureHolder made = Create(description, PICTYPE_ICON, own);
  return made.Width() > 0 ? std::move(made) : PictureHolder();
}

int PictureHolder::Width() const {
  OLE_XSIZE_HIMETRIC width = 0;
  return picture_ != nullptr && SUCCEEDED(picture_->get_Width(&width)) ? width : -1;
}

int PictureHolder::Height() const {
  OLE_YSIZE_HIMETRIC height = 0;
  return picture_ != nullptr && SUCCEEDED(picture_->get_Height(&height)) ? height : -1;
}

void PictureHolder::Render(HDC dc, const RECT& destination, const RECT& bounds) const {
  if (picture_ == nullptr || dc == nullptr) return;
  const LONG width = Extent(destination.left, destination.right);
  const LONG height = Extent(destination.top, destination.bottom);
  // Some systems tell no size of an enhanced metafile, which is drawn whole whatever the source.
  LONG source_width = Width(), source_height = Height();
  if (source_width == 0 || source_height == 0) source_width = source_height = 1;
  picture_->Render(dc, destination.left, destination.top, width, height, 0, source_height,
                   source_width, -source_height, &bounds);
}

}  // namespace vela

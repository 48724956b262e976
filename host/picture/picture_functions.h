// Functions of the host about pictures, for scripts: the members of an object that has no state.
#pragma once

#include "frame/interface/tessel_object.h"

namespace vela::host {

// Grey values are 0 (black) to 255 (white), rounded and cut to that range; a missing value and NaN
// are black. Complex matrices are status 3, empty or too large ones status 8. A drawing handle that
// is returned belongs to the caller, until a picture takes it over; 0 stands for none.
class VELAHOST_API PictureFunctions : public TesselCObject {
 public:
  PictureFunctions();

  const char* GetTCTypeName() const override { return "host"; }
  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;

  // (picture, matrix, black, white): a picture with a pixel for each element, the grey values of
  // black and white and linearly between. 1, or 0 when no picture can be made.
  int PictureFromMatrix(CTCall* call);
  // (matrix, picture): the grey values of the picture at 96 pixels per inch, by luminance; 1, or 0
  // for an empty picture, when the matrix is left alone.
  int MatrixFromPicture(CTCall* call);
  // (matrix): a bitmap's handle, of grey values.
  int BitmapFromMatrix(CTCall* call);
  // (matrix): an icon's handle, of grey values; a missing value is transparent.
  int IconFromMatrix(CTCall* call);
  // (x, y, width, height): the handle of a metafile, enhanced or not, of black lines from point to
  // point inside width x height pixels; a point with a missing part interrupts them.
  int MetafileFromLines(CTCall* call);
  int EnhMetafileFromLines(CTCall* call);
  // (handle): deletes a drawing of any kind; 1, or 0 when there is none.
  int DeleteHandle(CTCall* call);
};

}  // namespace vela::host

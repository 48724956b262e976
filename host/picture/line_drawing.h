// Lines from point to point, as scripts give them.
#pragma once

#include "host/picture/lent_doubles.h"
#include "platform/picture.h"

namespace vela::host {

struct LineDrawing {
  // From the arguments: the points' x and y, two vectors of one size, then the width and height of
  // the image in pixels. Throws a MemberFailure; status 8 for sizes that do not fit.
  explicit LineDrawing(MemberArguments& args);
  // In black, one pixel wide; a point with a part that is no number interrupts the lines.
  void Draw(HDC dc) const;

  tagMSOOBJVECT x, y;
  int width = 0, height = 0, count = 0;
};

}  // namespace vela::host

#include "host/picture/line_drawing.h"

#include <algorithm>
#include <cmath>

#include "host/picture/device_context.h"
#include "host/picture/image_codec.h"

namespace vela::host {
namespace {

int Coordinate(double value) {
  constexpr double kMost = 32767;  // as far as metafiles go
  return static_cast<int>(std::floor(std::clamp(value, -kMost, kMost) + 0.5));
}

}  // namespace

LineDrawing::LineDrawing(MemberArguments& args)
    : x(RealContainer(args, 0, kFlagAnyVector)), y(RealContainer(args, 1, kFlagAnyVector)) {
  width = args.Int(2);
  height = args.Int(3);
  int last_x = -1, last_y = -1;
  Check(x.object->GetUpperBound(&x.indices, last_x));
  Check(y.object->GetUpperBound(&y.indices, last_y));
  count = std::min(last_x, last_y) + 1;
  if (last_x != last_y || !IsImageSize(width, height)) throw MemberFailure{status::kBadValue};
}

void LineDrawing::Draw(HDC dc) const {
  if (count == 0) return;
  const SelectedPen pen(dc, 0, 1);
  const LentDoubles all_x(x), all_y(y);
  bool is_drawing = false;
  for (int i = 0; i < count; ++i) {
    const double at_x = all_x.Get()[i], at_y = all_y.Get()[i];
    const bool is_point = IsShown(at_x) && IsShown(at_y);
    if (is_point && is_drawing) LineTo(dc, Coordinate(at_x), Coordinate(at_y));
    if (is_point && !is_drawing) MoveToEx(dc, Coordinate(at_x), Coordinate(at_y), nullptr);
    is_drawing = is_point;
  }
}

}  // namespace vela::host

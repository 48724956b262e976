// Matrices of grey values, and the images that they are.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "host/picture/bitmap.h"
#include "host/picture/lent_doubles.h"

namespace vela::host {

// The values of a matrix, with its shape, for a scope. The matrix must outlive this. Throws a
// MemberFailure: status 8 for a shape that no image has.
struct MatrixValues {
  explicit MatrixValues(const tagMSOOBJVECT& matrix);
  std::span<const double> All() const {
    return {lent->Get(), static_cast<std::size_t>(rows) * static_cast<unsigned>(cols)};
  }
  int rows = 0, cols = 0;
  std::optional<LentDoubles> lent;
};

// A pixel for each value: the greys from black to white, rounded and cut off outside them, and
// black for what is no number. Empty without memory.
Bitmap GreyBitmap(const MatrixValues& values, double black, double white);

// A bitmap of one bit for each value, set where it is no number; null without memory.
HBITMAP MissingMask(const MatrixValues& values);

// How light a pixel is, 0 .. 255: a grey pixel's own value.
double LightnessOf(std::uint32_t pixel);

}  // namespace vela::host

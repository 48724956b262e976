#include "host/picture/grey_values.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "host/picture/image_codec.h"

namespace vela::host {
namespace {

// The grey between black and white, 0 .. 255, that a value stands for.
std::uint32_t GreyOf(double value, double black, double white) {
  if (!IsShown(value)) return 0;
  if (black == white) return value < white ? 0 : 255;
  const double scaled = (value - black) / (white - black) * 255;
  // Bounds that are no numbers make it one that is not above 0.
  return scaled > 0 ? static_cast<std::uint32_t>(std::floor(std::min(scaled, 255.0) + 0.5)) : 0;
}

std::uint32_t GreyPixel(std::uint32_t grey) { return grey << 16 | grey << 8 | grey; }

}  // namespace

MatrixValues::MatrixValues(const tagMSOOBJVECT& matrix) {
  const auto* const at = &matrix.indices;
  if (matrix.object->GetMatrixDimensions(&rows, &cols, at) == 0 || !IsImageSize(cols, rows)) {
    throw MemberFailure{status::kBadValue};
  }
  lent.emplace(matrix);
}

Bitmap GreyBitmap(const MatrixValues& values, double black, double white) {
  Bitmap bitmap(values.cols, values.rows);
  if (!bitmap) return bitmap;
  std::ranges::transform(values.All(), bitmap.Pixels(),
                         [=](double value) { return GreyPixel(GreyOf(value, black, white)); });
  return bitmap;
}

HBITMAP MissingMask(const MatrixValues& values) {
  // Rows are whole 16-bit words.
  const std::size_t stride = (static_cast<std::size_t>(values.cols) + 15) / 16 * 2;
  std::vector<unsigned char> bits(stride * static_cast<unsigned>(values.rows));
  const double* value = values.All().data();
  for (int row = 0; row < values.rows; ++row) {
    for (int col = 0; col < values.cols; ++col) {
      if (IsShown(*value++)) continue;
      bits[static_cast<unsigned>(row) * stride + static_cast<unsigned>(col) / 8] |=
          static_cast<unsigned char>(0x80 >> col % 8);
    }
  }
  return CreateBitmap(values.cols, values.rows, 1, 1, bits.data());
}

double LightnessOf(std::uint32_t pixel) {
  const std::uint32_t red = pixel >> 16 & 0xFF, green = pixel >> 8 & 0xFF, blue = pixel & 0xFF;
  return (299 * red + 587 * green + 114 * blue + 500) / 1000;
}

}  // namespace vela::host

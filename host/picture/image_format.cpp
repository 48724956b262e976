// Telling image files apart by their structure.
#include <algorithm>
#include <string_view>

#include "host/picture/image_codec.h"

namespace vela::host {
namespace {

using namespace std::string_view_literals;

struct Signature {
  std::string_view bytes;
  ImageFormat format;
};
constexpr Signature kSignatures[] = {
    {"\x89PNG\r\n\x1a\n"sv, ImageFormat::kPng},
    {"\xff\xd8\xff"sv, ImageFormat::kJpeg},
    {"BM"sv, ImageFormat::kBmp},
    {"GIF87a"sv, ImageFormat::kGif},
    {"GIF89a"sv, ImageFormat::kGif},
    {"II*\0"sv, ImageFormat::kTiff},
    {"MM\0*"sv, ImageFormat::kTiff},
};

bool Contains(Bytes file, std::string_view wanted) {
  return std::search(file.begin(), file.end(), wanted.begin(), wanted.end(),
                     [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); }) !=
         file.end();
}

std::uint32_t Little(Bytes file, std::size_t at, int bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < bytes; ++i) value |= std::uint32_t{file[at + i]} << 8 * i;
  return value;
}

// Whether the pixels that the header promises are there.
bool HasPixels(Bytes bmp) {
  constexpr std::size_t kShortHeader = 26, kHeader = 54;
  if (bmp.size() < kShortHeader) return false;
  const std::uint64_t offset = Little(bmp, 10, 4);
  const bool is_short = Little(bmp, 14, 4) == kShortHeader - 14;
  if (!is_short && bmp.size() < kHeader) return false;
  const std::uint32_t compression = is_short ? 0 : Little(bmp, 30, 4);
  constexpr std::uint32_t kPlain = 0, kMasks = 3;
  if (compression != kPlain && compression != kMasks) {
    return offset + Little(bmp, 34, 4) <= bmp.size();
  }
  const std::int64_t width =
      is_short ? Little(bmp, 18, 2) : static_cast<std::int32_t>(Little(bmp, 18, 4));
  const std::int64_t height =
      is_short ? Little(bmp, 20, 2) : static_cast<std::int32_t>(Little(bmp, 22, 4));
  const std::int64_t rows = height < 0 ? -height : height;
  if (!IsImageSize(width, rows)) return false;
  const std::int64_t bits = Little(bmp, is_short ? 24 : 28, 2);
  const std::int64_t stride = (width * bits + 31) / 32 * 4;
  return offset + static_cast<std::uint64_t>(stride * rows) <= bmp.size();
}

// Decoders show what there is of a file that ends early, each in its own way. Of TIFF they do not.
bool HasEnd(ImageFormat format, Bytes file) {
  switch (format) {
    case ImageFormat::kPng:
      return Contains(file, "IEND\xae\x42\x60\x82"sv);
    case ImageFormat::kJpeg:
      return Contains(file, "\xff\xd9"sv);
    case ImageFormat::kGif:
      return Contains(file, "\0;"sv);
    case ImageFormat::kBmp:
      return HasPixels(file);
    default:
      return true;
  }
}

}  // namespace

std::optional<ImageFormat> FindImageFormat(Bytes file) {
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  for (const Signature& signature : kSignatures) {
    if (!text.starts_with(signature.bytes)) continue;
    if (HasEnd(signature.format, file)) return signature.format;
    return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace vela::host

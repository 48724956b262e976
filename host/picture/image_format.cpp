// Telling image files apart by their structure.
#include <algorithm>
#include <cstdlib>
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

// The fields of a BMP file's header. The oldest kind has no more than a size and the bits per
// pixel.
struct BmpHeader {
  static constexpr std::uint32_t kFile = 14, kShort = 12, kCommon = 40;

  std::uint32_t size = 0, compression = 0, bytes = 0, colors = 0, pixels_at = 0;
  std::int64_t width = 0, rows = 0, bits = 0;

  // Whether it is all there, and of a known kind.
  bool Read(Bytes bmp) {
    constexpr std::uint32_t kSizes[] = {kShort, kCommon, 52, 56, 64, 108, 124};
    if (bmp.size() < kFile + kShort) return false;
    size = Little(bmp, kFile, 4);
    if (std::ranges::find(kSizes, size) == std::end(kSizes)) return false;
    if (bmp.size() < kFile + size) return false;
    pixels_at = Little(bmp, 10, 4);
    if (size == kShort) {
      width = Little(bmp, 18, 2);
      rows = Little(bmp, 20, 2);
      bits = Little(bmp, 24, 2);
      return true;
    }
    width = static_cast<std::int32_t>(Little(bmp, 18, 4));
    rows = std::abs(std::int64_t{static_cast<std::int32_t>(Little(bmp, 22, 4))});
    bits = Little(bmp, 28, 2);
    compression = Little(bmp, 30, 4);
    bytes = Little(bmp, 34, 4);
    colors = Little(bmp, 46, 4);
    return true;
  }
};

// Whether a BMP file's header makes sense, and the colours and pixels that it promises are there.
bool HasPixels(Bytes bmp) {
  constexpr std::int64_t kBits[] = {1, 4, 8, 16, 24, 32};
  constexpr std::uint32_t kPlain = 0, kRuns8 = 1, kRuns4 = 2, kMasks = 3;
  BmpHeader header;
  if (!header.Read(bmp) || !IsImageSize(header.width, header.rows) ||
      std::ranges::find(kBits, header.bits) == std::end(kBits)) {
    return false;
  }
  const std::uint64_t colors_end =
      BmpHeader::kFile + header.size + std::uint64_t{header.colors} * 4;
  if (colors_end > bmp.size()) return false;
  std::uint64_t pixels = header.bytes;
  if (header.compression == kPlain || header.compression == kMasks) {
    pixels = static_cast<std::uint64_t>((header.width * header.bits + 31) / 32 * 4 * header.rows);
  } else if (header.bits != (header.compression == kRuns8   ? 8
                             : header.compression == kRuns4 ? 4
                                                            : 0)) {
    return false;
  }
  return header.pixels_at + pixels <= bmp.size();
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

// Telling image files apart by their structure. Decoders are trusted with the pixels only: some
// believe any size, and show what there is of a file that ends early, each in its own way.
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

#include "host/picture/image_codec.h"

namespace vela::host {
namespace {

using namespace std::string_view_literals;

// Numbers of up to four bytes; what lies behind the end of the file is 0.
std::uint32_t Little(Bytes file, std::size_t at, int bytes) {
  std::uint32_t value = 0;
  for (int i = bytes; i-- > 0;) value = value << 8 | (at + i < file.size() ? file[at + i] : 0u);
  return value;
}
std::uint32_t Big(Bytes file, std::size_t at, int bytes) {
  std::uint32_t value = 0;
  for (int i = 0; i < bytes; ++i) value = value << 8 | (at + i < file.size() ? file[at + i] : 0u);
  return value;
}

bool Contains(Bytes file, std::string_view wanted) {
  return std::search(file.begin(), file.end(), wanted.begin(), wanted.end(),
                     [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); }) !=
         file.end();
}

bool IsPng(Bytes png) {
  return IsImageSize(Big(png, 16, 4), Big(png, 20, 4)) && Contains(png, "IEND\xae\x42\x60\x82"sv);
}

bool IsJpeg(Bytes jpeg) {
  constexpr std::uint32_t kMarker = 0xFF, kFirstFrame = 0xC0, kLastFrame = 0xCF;
  constexpr std::uint32_t kOthers[] = {0xC4, 0xC8, 0xCC};  // among the frames, but none
  for (std::size_t at = 2; at + 4 <= jpeg.size() && jpeg[at] == kMarker;) {
    const std::uint32_t kind = jpeg[at + 1];
    if (kind == kMarker) {
      ++at;
      continue;
    }
    const bool is_frame = kind >= kFirstFrame && kind <= kLastFrame &&
                          std::ranges::find(kOthers, kind) == std::end(kOthers);
    if (is_frame) {
      return IsImageSize(Big(jpeg, at + 7, 2), Big(jpeg, at + 5, 2)) &&
             Contains(jpeg, "\xff\xd9"sv);
    }
    at += 2 + Big(jpeg, at + 2, 2);
  }
  return false;
}

// Where the run of blocks that begins there ends; each is as long as its first byte says, and the
// last is empty.
std::size_t EndOfBlocks(Bytes gif, std::size_t at) {
  while (at < gif.size() && gif[at] != 0) at += 1u + gif[at];
  return at + 1;
}

std::size_t ColorBytes(std::uint32_t flags) { return (flags & 0x80) != 0 ? 6u << (flags & 7) : 0; }

// Every image counts: decoders read them all.
bool IsGif(Bytes gif) {
  constexpr unsigned char kExtension = '!', kImage = ',', kEnd = ';';
  if (!IsImageSize(Little(gif, 6, 2), Little(gif, 8, 2))) return false;
  std::size_t at = 13 + ColorBytes(Little(gif, 10, 1));
  for (bool has_image = false; at < gif.size();) {
    if (gif[at] == kEnd) return has_image;
    if (gif[at] == kImage) {
      has_image = true;
      if (!IsImageSize(Little(gif, at + 5, 2), Little(gif, at + 7, 2))) return false;
      at = EndOfBlocks(gif, at + 11 + ColorBytes(Little(gif, at + 9, 1)));
    } else if (gif[at] == kExtension) {
      at = EndOfBlocks(gif, at + 2);
    } else {
      return false;
    }
  }
  return false;
}

// The decoder finds what is missing at the end.
bool IsTiff(Bytes tiff) {
  constexpr std::uint32_t kWidth = 256, kHeight = 257, kShort = 3;
  const auto number = tiff[0] == 'I' ? Little : Big;
  const std::size_t directory = number(tiff, 4, 4);
  std::uint32_t width = 0, height = 0;
  for (std::uint32_t i = 0; i < number(tiff, directory, 2); ++i) {
    const std::size_t entry = directory + 2 + std::size_t{12} * i;
    const std::uint32_t tag = number(tiff, entry, 2);
    const std::uint32_t value =
        number(tiff, entry + 8, number(tiff, entry + 2, 2) == kShort ? 2 : 4);
    if (tag == kWidth) width = value;
    if (tag == kHeight) height = value;
  }
  return IsImageSize(width, height);
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
bool IsBmp(Bytes bmp) {
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

struct Signature {
  std::string_view bytes;
  ImageFormat format;
  bool (*is_sound)(Bytes file);
};
constexpr Signature kSignatures[] = {
    {"\x89PNG\r\n\x1a\n"sv, ImageFormat::kPng, IsPng},
    {"\xff\xd8\xff"sv, ImageFormat::kJpeg, IsJpeg},
    {"BM"sv, ImageFormat::kBmp, IsBmp},
    {"GIF87a"sv, ImageFormat::kGif, IsGif},
    {"GIF89a"sv, ImageFormat::kGif, IsGif},
    {"II*\0"sv, ImageFormat::kTiff, IsTiff},
    {"MM\0*"sv, ImageFormat::kTiff, IsTiff},
};

}  // namespace

std::optional<ImageFormat> FindImageFormat(Bytes file) {
  const std::string_view text(reinterpret_cast<const char*>(file.data()), file.size());
  for (const Signature& signature : kSignatures) {
    if (!text.starts_with(signature.bytes)) continue;
    if (signature.is_sound(file)) return signature.format;
    return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace vela::host

// Image files in memory: told apart, decoded and encoded.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace vela::host {

enum class ImageFormat { kPng, kJpeg, kBmp, kGif, kTiff };

using Bytes = std::span<const unsigned char>;

// The format that the first bytes tell, if it is one of these, the header gives a size that an
// image may have, and the file does not end early as far as its structure shows.
std::optional<ImageFormat> FindImageFormat(Bytes file);

// A larger image is refused before there is memory for it.
inline constexpr int kMostImageSide = 32767;
inline constexpr std::int64_t kMostImagePixels = std::int64_t{1} << 26;
constexpr bool IsImageSize(std::int64_t width, std::int64_t height) {
  return width >= 1 && height >= 1 && width <= kMostImageSide && height <= kMostImageSide &&
         width * height <= kMostImagePixels;
}

// Gives memory for width x height pixels, or null.
using NewPixels = std::function<std::uint32_t*(int width, int height)>;

// Decodes the first image of a file into memory that new_pixels gives: rows from the top, pixels
// 0xAARRGGBB with the colours as they are without the alpha. False for a file that is not of the
// format or is damaged, for a size that IsImageSize refuses, and without memory; what new_pixels
// gave then holds anything.
bool DecodeImage(ImageFormat format, Bytes file, const NewPixels& new_pixels);

// A PNG file of width x height pixels 0x00RRGGBB, rows from the top; empty when that fails.
std::string EncodePng(const std::uint32_t* pixels, int width, int height);

}  // namespace vela::host

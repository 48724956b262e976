#include "host/picture/image_file.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <vector>

#include "frame/interface/host_services.h"
#include "host/picture/image_codec.h"

namespace vela::host {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kMostBytes = std::uintmax_t{1} << 29;

fs::path PathOf(const std::string& name) {
  return fs::path(std::u8string(name.begin(), name.end()));
}

// Empty when there is no such file of a size to read.
std::vector<unsigned char> ReadFile(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return {};
  const std::uintmax_t size = fs::file_size(path, error);
  if (error || size > kMostBytes) return {};
  std::vector<unsigned char> contents(static_cast<std::size_t>(size));
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(contents.data()), static_cast<std::streamsize>(size));
  contents.resize(static_cast<std::size_t>(file.gcount()));
  return contents;
}

void PutOverWhite(std::uint32_t* pixels, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint32_t color = pixels[i], alpha = color >> 24;
    const auto part = [&](int shift) {
      const std::uint32_t own = color >> shift & 0xFF;
      return (own * alpha + 255 * (255 - alpha) + 127) / 255 << shift;
    };
    pixels[i] = part(16) | part(8) | part(0);
  }
}

}  // namespace

Bitmap ReadImageFile(const std::string& name) {
  const std::vector<unsigned char> file = ReadFile(PathOf(name));
  const std::optional<ImageFormat> format = FindImageFormat(file);
  Bitmap bitmap;
  const auto new_pixels = [&bitmap](int width, int height) {
    bitmap = Bitmap(width, height);
    return bitmap.Pixels();
  };
  if (!format || !DecodeImage(*format, file, new_pixels)) return {};
  PutOverWhite(bitmap.Pixels(), std::size_t{1} * bitmap.Width() * bitmap.Height());
  return bitmap;
}

bool WritePngFile(const std::string& name, const Bitmap& bitmap) {
  if (!bitmap) return false;
  const std::string contents = EncodePng(bitmap.Pixels(), bitmap.Width(), bitmap.Height());
  if (contents.empty()) return false;
  const fs::path path = PathOf(name);
  std::ofstream file(path, std::ios::binary);
  if (!file) return false;
  file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
  file.close();
  if (file) return true;
  std::error_code error;
  fs::remove(path, error);
  return false;
}

}  // namespace vela::host

HBITMAP LoadImageFile(const char* file_name) try {
  if (file_name == nullptr) return nullptr;
  return vela::host::ReadImageFile(file_name).Detach();
} catch (const std::exception&) {
  return nullptr;
}

// What Picture.Load does with a file, whatever is in it: it becomes a picture of a size that an
// image may have, or nothing, and all of it is released.
#include <cstdint>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#include "frame/interface/host_services.h"
#include "fuzz/require.h"
#include "host/picture/image_codec.h"
#include "platform/picture.h"

namespace {

// A file in memory that has a name.
class MemoryFile {
 public:
  MemoryFile()
      : descriptor_(memfd_create("image", 0)),
        name_("/proc/self/fd/" + std::to_string(descriptor_)) {}
  void Set(const std::uint8_t* data, std::size_t size) const {
    REQUIRE(ftruncate(descriptor_, 0) == 0);
    REQUIRE(pwrite(descriptor_, data, size, 0) == static_cast<ssize_t>(size));
  }
  const char* Name() const { return name_.c_str(); }

 private:
  int descriptor_;
  std::string name_;
};

std::int64_t PixelsOf(LONG himetric) { return (himetric * std::int64_t{96} + 1270) / 2540; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vela::host;
  static const MemoryFile file;
  file.Set(data, size);
  const HBITMAP bitmap = LoadImageFile(file.Name());
  const bool is_image = FindImageFormat({data, size}).has_value();
  REQUIRE(is_image || bitmap == nullptr);
  if (bitmap == nullptr) return 0;

  PICTDESC description = {};
  description.cbSizeofstruct = sizeof description;
  description.picType = PICTYPE_BITMAP;
  description.bmp.hbitmap = bitmap;
  IPicture* picture = nullptr;
  REQUIRE(OleCreatePictureIndirect(&description, IID_IPicture, 1,
                                   reinterpret_cast<void**>(&picture)) == S_OK);
  LONG width = 0, height = 0;
  REQUIRE(picture->get_Width(&width) == S_OK && picture->get_Height(&height) == S_OK);
  REQUIRE(IsImageSize(PixelsOf(width), PixelsOf(height)));
  REQUIRE(picture->Release() == 0 && GetObjectType(bitmap) == 0);
  return 0;
}

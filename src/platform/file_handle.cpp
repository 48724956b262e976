#include "platform/file_handle.h"

namespace vela::platform {

FileHandle::FileHandle(FileHandle&& other) noexcept
    : handle_(std::exchange(other.handle_, kClosed)),
      access_(other.access_),
      is_seekable_(other.is_seekable_) {}

FileHandle& FileHandle::operator=(FileHandle&& other) noexcept {
  if (this != &other) {
    static_cast<void>(Close());
    handle_ = std::exchange(other.handle_, kClosed);
    access_ = other.access_;
    is_seekable_ = other.is_seekable_;
  }
  return *this;
}

}  // namespace vela::platform

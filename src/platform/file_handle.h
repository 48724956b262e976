// A file of the operating system, with the semantics of the Windows calls on every platform.
//
// Names are UTF-8 (UTF-16 on Windows). An empty name and one with a NUL inside are bad paths. A
// folder is access denied; a pipe or a socket is an invalid file, so that nothing waits for another
// process to turn up. Positions and sizes are 64-bit.
//
// Sharing. On Windows the system keeps it. On Linux it holds between the objects and processes of
// this library, which mark an open regular file with advisory locks (see file_sharing_posix.h):
// other programs neither see nor respect them, and a file system without locks shares everything.
// As on Windows, a file that is open is not removed or renamed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "platform/file_cause.h"

namespace vela::platform {

// The numbers are the bits of an open mode. kNone opens a file that is neither read nor written.
enum class FileAccess : unsigned { kRead = 0, kWrite = 1, kReadWrite = 2, kNone = 3 };
constexpr bool CanRead(FileAccess access) {
  return access == FileAccess::kRead || access == FileAccess::kReadWrite;
}
constexpr bool CanWrite(FileAccess access) {
  return access == FileAccess::kWrite || access == FileAccess::kReadWrite;
}

// kCreateAlways empties a file that is there; kOpenAlways keeps it.
enum class FileCreation { kOpenExisting, kCreateAlways, kOpenAlways };

enum class SeekFrom { kBegin, kCurrent, kEnd };

struct FileOptions {
  FileAccess access = FileAccess::kRead;
  // What others may do while the file is open. An open that asks for what another one does not
  // share, or does not share what another one does, is a sharing violation.
  bool shares_reading = false;
  bool shares_writing = false;
  FileCreation creation = FileCreation::kOpenExisting;
  bool is_inheritable = true;  // by child processes
};

// Owns the handle. Every operation on a closed one is kInvalidFile.
class FileHandle {
 public:
  // Nothing that GetHandle can return, and not 0.
  static constexpr std::intptr_t kClosed = -1;

  FileHandle() = default;
  FileHandle(FileHandle&& other) noexcept
      : handle_(std::exchange(other.handle_, kClosed)),
        access_(other.access_),
        is_seekable_(other.is_seekable_) {}
  FileHandle& operator=(FileHandle&& other) noexcept {
    if (this != &other) {
      static_cast<void>(Close());
      handle_ = std::exchange(other.handle_, kClosed);
      access_ = other.access_;
      is_seekable_ = other.is_seekable_;
    }
    return *this;
  }
  ~FileHandle() { static_cast<void>(Close()); }

  // Closes what was open first.
  FileCause Open(std::string_view name, const FileOptions& options);
  FileCause Close();

  bool IsOpen() const { return handle_ != kClosed; }
  // The descriptor, or the HANDLE on Windows; never 0.
  std::intptr_t Native() const { return handle_; }
  FileAccess Access() const { return access_; }
  // False for a terminal and the like, where the operations at an offset ignore it.
  bool IsSeekable() const { return is_seekable_; }

  // At the position of the handle, which advances. done is what was transferred, also on failure;
  // fewer bytes than asked without a failure are the end of the file.
  FileCause Read(void* data, std::size_t size, std::size_t& done);
  FileCause Write(const void* data, std::size_t size, std::size_t& done);
  // At an offset; the position of the handle is unspecified afterwards.
  FileCause ReadAt(std::int64_t offset, void* data, std::size_t size, std::size_t& done);
  FileCause WriteAt(std::int64_t offset, const void* data, std::size_t size, std::size_t& done);
  // A position before the beginning is kBadSeek and changes nothing; one after the end is allowed.
  FileCause Seek(std::int64_t offset, SeekFrom from, std::int64_t& position);
  // 0 for a device.
  FileCause GetSize(std::int64_t& size) const;
  // Hands what was written to the disk. kAccessDenied when the file is not open for writing.
  FileCause Flush();

 private:
  std::intptr_t handle_ = kClosed;
  FileAccess access_ = FileAccess::kNone;
  bool is_seekable_ = false;
};

// Deletes a file. A folder is kAccessDenied, an open file kSharingViolation.
FileCause RemoveFile(std::string_view name);
// Moves a file or folder, to another disk as well. kAccessDenied when the new name exists already;
// an open file is a sharing violation.
FileCause RenameFile(std::string_view from, std::string_view to);

}  // namespace vela::platform

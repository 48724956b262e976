#if !defined(_WIN32)

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <memory>
#include <new>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/file_handle.h"
#include "platform/file_sharing_posix.h"

namespace vela::platform {
namespace {

namespace fs = std::filesystem;

FileCause CauseOfErrno() { return CauseOfSystemError(static_cast<unsigned long>(errno)); }

bool IsName(std::string_view name) {
  return !name.empty() && name.find('\0') == std::string_view::npos;
}

// Of a name that could not be found: a file that is not there, or a folder on the way to it.
FileCause CauseOfMissing(const std::string& name) {
  std::error_code ignored;
  const fs::path folder = fs::path(name).parent_path();
  return folder.empty() || fs::is_directory(folder, ignored) ? FileCause::kFileNotFound
                                                             : FileCause::kBadPath;
}

FileCause CauseOfName(const std::string& name) {
  return errno == ENOENT ? CauseOfMissing(name) : CauseOfErrno();
}

int OpenDescriptor(const char* name, int flags) {
  for (;;) {
    const int descriptor = open(name, flags, 0666);
    if (descriptor >= 0 || errno != EINTR) return descriptor;
  }
}

// A handle is never 0, which stands for a closed file, nor a standard stream.
int AboveStandardStreams(int descriptor, bool is_inheritable) {
  if (descriptor > STDERR_FILENO) return descriptor;
  const int command = is_inheritable ? F_DUPFD : F_DUPFD_CLOEXEC;
  const int moved = fcntl(descriptor, command, STDERR_FILENO + 1);
  close(descriptor);
  return moved;
}

int OpenFlags(const FileOptions& options) {
  // Without O_NONBLOCK, opening a pipe would wait for its other end.
  int flags = O_NONBLOCK | O_NOCTTY;
  if (!options.is_inheritable) flags |= O_CLOEXEC;
  if (options.creation != FileCreation::kOpenExisting) flags |= O_CREAT;
  return flags;
}

// A file for writing is opened for reading too when it may be: the locks of sharing need it.
int OpenFor(const char* name, const FileOptions& options) {
  const int flags = OpenFlags(options);
  if (!CanWrite(options.access)) return OpenDescriptor(name, flags | O_RDONLY);
  const int descriptor = OpenDescriptor(name, flags | O_RDWR);
  if (descriptor >= 0 || options.access != FileAccess::kWrite || errno != EACCES) return descriptor;
  return OpenDescriptor(name, flags | O_WRONLY);
}

// Checks what was opened, marks it as open and empties it when asked.
FileCause Admit(int descriptor, const FileOptions& options) {
  struct stat found;
  if (fstat(descriptor, &found) != 0) return CauseOfErrno();
  if (S_ISDIR(found.st_mode)) return FileCause::kAccessDenied;
  if (S_ISFIFO(found.st_mode) || S_ISSOCK(found.st_mode)) return FileCause::kInvalidFile;
  fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
  if (!S_ISREG(found.st_mode)) return FileCause::kNone;
  if (const FileCause cause = MarkOpen(descriptor, options); cause != FileCause::kNone) {
    return cause;
  }
  if (options.creation == FileCreation::kCreateAlways && found.st_size != 0) {
    // Creating empties the file whatever it is opened for; a descriptor that only reads cannot.
    const std::string self = "/proc/self/fd/" + std::to_string(descriptor);
    if (ftruncate(descriptor, 0) != 0 && truncate(self.c_str(), 0) != 0) return CauseOfErrno();
  }
  return FileCause::kNone;
}

// Calls transfer(bytes so far, bytes to go), which works like read and write, to the end.
template <class Transfer>
FileCause TransferAll(std::size_t size, std::size_t& done, const Transfer& transfer) {
  constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
  done = 0;
  while (done < size) {
    const ssize_t moved = transfer(done, std::min(size - done, kMostAtOnce));
    if (moved == 0) break;
    if (moved > 0) {
      done += static_cast<std::size_t>(moved);
    } else if (errno != EINTR) {
      return CauseOfErrno();
    }
  }
  return FileCause::kNone;
}

std::byte* At(void* data, std::size_t offset) { return static_cast<std::byte*>(data) + offset; }
const std::byte* At(const void* data, std::size_t offset) {
  return static_cast<const std::byte*>(data) + offset;
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { static_cast<void>(Close()); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  bool IsOpen() const { return number_ >= 0; }
  int Number() const { return number_; }
  // A disk may be found full as late as here.
  bool Close() { return number_ < 0 || close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

FileCause CopyBytes(int from, int to) {
  constexpr std::size_t kBlock = std::size_t{1} << 20;
  const auto block = std::make_unique_for_overwrite<char[]>(kBlock);
  for (std::size_t got = kBlock, put = 0; got == kBlock;) {
    FileCause cause = TransferAll(kBlock, got, [&](std::size_t at, std::size_t bytes) {
      return read(from, block.get() + at, bytes);
    });
    if (cause != FileCause::kNone) return cause;
    cause = TransferAll(got, put, [&](std::size_t at, std::size_t bytes) {
      return write(to, block.get() + at, bytes);
    });
    if (cause != FileCause::kNone) return cause;
    if (put < got) return FileCause::kDiskFull;
  }
  return FileCause::kNone;
}

// The copy has the times of its source.
FileCause CopyFileTo(int from, const struct stat& found, int to) {
  const FileCause cause = CopyBytes(from, to);
  if (cause != FileCause::kNone) return cause;
  const struct timespec times[] = {found.st_atim, found.st_mtim};
  static_cast<void>(futimens(to, times));
  return FileCause::kNone;
}

// All or nothing: what fails leaves nothing under the new name.
FileCause MoveToOtherDisk(const std::string& from, const std::string& to) try {
  const Descriptor source(OpenDescriptor(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  struct stat found;
  if (!source.IsOpen() || fstat(source.Number(), &found) != 0) return CauseOfErrno();
  if (!S_ISREG(found.st_mode)) return FileCause::kAccessDenied;
  Descriptor copy(open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, found.st_mode & 0777));
  if (!copy.IsOpen()) return CauseOfName(to);
  FileCause cause = CopyFileTo(source.Number(), found, copy.Number());
  if (!copy.Close() && cause == FileCause::kNone) cause = CauseOfErrno();
  if (cause == FileCause::kNone && unlink(from.c_str()) != 0) cause = CauseOfErrno();
  if (cause != FileCause::kNone) unlink(to.c_str());
  return cause;
} catch (const std::bad_alloc&) {
  return FileCause::kGeneric;
}

}  // namespace

FileCause FileHandle::Open(std::string_view name, const FileOptions& options) {
  static_cast<void>(Close());
  if (!IsName(name)) return FileCause::kBadPath;
  const std::string path(name);
  int descriptor = OpenFor(path.c_str(), options);
  if (descriptor < 0) return CauseOfName(path);
  descriptor = AboveStandardStreams(descriptor, options.is_inheritable);
  if (descriptor < 0) return CauseOfErrno();
  if (const FileCause cause = Admit(descriptor, options); cause != FileCause::kNone) {
    close(descriptor);
    return cause;
  }
  handle_ = descriptor;
  access_ = options.access;
  is_seekable_ = lseek(descriptor, 0, SEEK_CUR) >= 0;
  return FileCause::kNone;
}

FileCause FileHandle::Close() {
  if (!IsOpen()) return FileCause::kInvalidFile;
  const int descriptor = static_cast<int>(std::exchange(handle_, kClosed));
  return close(descriptor) == 0 || errno == EINTR ? FileCause::kNone : CauseOfErrno();
}

FileCause FileHandle::Read(void* data, std::size_t size, std::size_t& done) {
  done = 0;
  if (!IsOpen()) return FileCause::kInvalidFile;
  if (!CanRead(access_)) return FileCause::kAccessDenied;
  return TransferAll(size, done, [&](std::size_t from, std::size_t bytes) {
    return read(static_cast<int>(handle_), At(data, from), bytes);
  });
}

FileCause FileHandle::Write(const void* data, std::size_t size, std::size_t& done) {
  done = 0;
  if (!IsOpen()) return FileCause::kInvalidFile;
  if (!CanWrite(access_)) return FileCause::kAccessDenied;
  return TransferAll(size, done, [&](std::size_t from, std::size_t bytes) {
    return write(static_cast<int>(handle_), At(data, from), bytes);
  });
}

FileCause FileHandle::ReadAt(std::int64_t offset, void* data, std::size_t size, std::size_t& done) {
  if (!is_seekable_) return Read(data, size, done);
  done = 0;
  if (!IsOpen()) return FileCause::kInvalidFile;
  if (!CanRead(access_)) return FileCause::kAccessDenied;
  return TransferAll(size, done, [&](std::size_t from, std::size_t bytes) {
    return pread(static_cast<int>(handle_), At(data, from), bytes,
                 offset + static_cast<off_t>(from));
  });
}

FileCause FileHandle::WriteAt(std::int64_t offset, const void* data, std::size_t size,
                              std::size_t& done) {
  if (!is_seekable_) return Write(data, size, done);
  done = 0;
  if (!IsOpen()) return FileCause::kInvalidFile;
  if (!CanWrite(access_)) return FileCause::kAccessDenied;
  return TransferAll(size, done, [&](std::size_t from, std::size_t bytes) {
    return pwrite(static_cast<int>(handle_), At(data, from), bytes,
                  offset + static_cast<off_t>(from));
  });
}

FileCause FileHandle::Seek(std::int64_t offset, SeekFrom from, std::int64_t& position) {
  if (!IsOpen()) return FileCause::kInvalidFile;
  const int whence = from == SeekFrom::kBegin     ? SEEK_SET
                     : from == SeekFrom::kCurrent ? SEEK_CUR
                                                  : SEEK_END;
  const off_t reached = lseek(static_cast<int>(handle_), offset, whence);
  if (reached < 0) return FileCause::kBadSeek;
  position = reached;
  return FileCause::kNone;
}

FileCause FileHandle::GetSize(std::int64_t& size) const {
  if (!IsOpen()) return FileCause::kInvalidFile;
  struct stat found;
  if (fstat(static_cast<int>(handle_), &found) != 0) return CauseOfErrno();
  size = found.st_size;
  return FileCause::kNone;
}

FileCause FileHandle::Flush() {
  if (!IsOpen()) return FileCause::kInvalidFile;
  if (!CanWrite(access_)) return FileCause::kAccessDenied;
  // EINVAL, EROFS: a device that has nothing to hand on.
  if (fsync(static_cast<int>(handle_)) == 0 || errno == EINVAL || errno == EROFS) {
    return FileCause::kNone;
  }
  return CauseOfErrno();
}

FileCause RemoveFile(std::string_view name) {
  if (!IsName(name)) return FileCause::kBadPath;
  const std::string path(name);
  if (IsMarkedOpen(path.c_str())) return FileCause::kSharingViolation;
  return unlink(path.c_str()) == 0 ? FileCause::kNone : CauseOfName(path);
}

FileCause RenameFile(std::string_view from, std::string_view to) {
  if (!IsName(from) || !IsName(to)) return FileCause::kBadPath;
  const std::string old_path(from), new_path(to);
  struct stat found;
  if (lstat(old_path.c_str(), &found) != 0) return CauseOfName(old_path);
  if (IsMarkedOpen(old_path.c_str())) return FileCause::kSharingViolation;
  if (old_path == new_path) return FileCause::kNone;
  if (renameat2(AT_FDCWD, old_path.c_str(), AT_FDCWD, new_path.c_str(), RENAME_NOREPLACE) == 0) {
    return FileCause::kNone;
  }
  if (errno == EINVAL || errno == ENOSYS) {
    // A file system that cannot refuse to replace: look first.
    if (lstat(new_path.c_str(), &found) == 0) return FileCause::kAccessDenied;
    if (rename(old_path.c_str(), new_path.c_str()) == 0) return FileCause::kNone;
  }
  if (errno == EXDEV) return MoveToOtherDisk(old_path, new_path);
  return errno == ENOENT ? FileCause::kBadPath : CauseOfErrno();
}

}  // namespace vela::platform

#endif

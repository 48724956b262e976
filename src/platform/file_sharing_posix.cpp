#if !defined(_WIN32)

#include "platform/file_sharing_posix.h"

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

namespace vela::platform {
namespace {

// One byte each.
constexpr off_t kMarks = std::numeric_limits<off_t>::max() - 16;
constexpr off_t kReads = kMarks;
constexpr off_t kWrites = kMarks + 1;
constexpr off_t kDeniesReading = kMarks + 2;
constexpr off_t kDeniesWriting = kMarks + 3;

struct flock LockOf(short type, off_t byte) {
  struct flock lock = {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  lock.l_start = byte;
  lock.l_len = 1;
  return lock;
}

// A descriptor that cannot read takes the exclusive lock, which says the same to everybody but
// another such descriptor: that one is refused.
bool Mark(int descriptor, off_t byte, FileCause& cause) {
  struct flock lock = LockOf(F_RDLCK, byte);
  if (fcntl(descriptor, F_OFD_SETLK, &lock) == 0) return true;
  if (errno == EBADF) {
    lock = LockOf(F_WRLCK, byte);
    if (fcntl(descriptor, F_OFD_SETLK, &lock) == 0) return true;
  }
  if (errno == EAGAIN || errno == EACCES) {
    cause = FileCause::kSharingViolation;
    return false;
  }
  return true;  // no locks here
}

bool IsMarked(int descriptor, off_t byte) {
  struct flock lock = LockOf(F_WRLCK, byte);
  return fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

}  // namespace

FileCause MarkOpen(int descriptor, const FileOptions& options) {
  const struct {
    bool holds;
    off_t own;
    off_t contradicted_by;
  } marks[] = {
      {CanRead(options.access), kReads, kDeniesReading},
      {CanWrite(options.access), kWrites, kDeniesWriting},
      {!options.shares_reading, kDeniesReading, kReads},
      {!options.shares_writing, kDeniesWriting, kWrites},
  };
  FileCause cause = FileCause::kNone;
  // Every own mark stands before the first look at the others': of two that contradict each other,
  // at least the later one sees it.
  for (const auto& mark : marks) {
    if (mark.holds && !Mark(descriptor, mark.own, cause)) return cause;
  }
  for (const auto& mark : marks) {
    if (mark.holds && IsMarked(descriptor, mark.contradicted_by)) {
      return FileCause::kSharingViolation;
    }
  }
  return FileCause::kNone;
}

bool IsMarkedOpen(const char* name) {
  struct stat found;
  if (lstat(name, &found) != 0 || !S_ISREG(found.st_mode)) return false;
  const int descriptor = open(name, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
  if (descriptor < 0) return false;
  const bool is_marked = IsMarked(descriptor, kReads) || IsMarked(descriptor, kWrites);
  close(descriptor);
  return is_marked;
}

}  // namespace vela::platform

#endif

#include "platform/file_cause.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <cerrno>
#endif

namespace vela::platform {

#if defined(_WIN32)

FileCause CauseOfSystemError(unsigned long error) {
  switch (error) {
    case NO_ERROR:
      return FileCause::kNone;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_NO_MORE_FILES:
      return FileCause::kFileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_BAD_PATHNAME:
    case ERROR_DIRECTORY:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_INVALID_NAME:
    case ERROR_NOT_SAME_DEVICE:
    case ERROR_NO_UNICODE_TRANSLATION:
      return FileCause::kBadPath;
    case ERROR_TOO_MANY_OPEN_FILES:
    case ERROR_SHARING_BUFFER_EXCEEDED:
      return FileCause::kTooManyOpenFiles;
    case ERROR_ACCESS_DENIED:
    case ERROR_ALREADY_EXISTS:
    case ERROR_CANNOT_MAKE:
    case ERROR_FILE_EXISTS:
    case ERROR_INVALID_ACCESS:
    case ERROR_WRITE_PROTECT:
      return FileCause::kAccessDenied;
    case ERROR_BAD_FORMAT:
    case ERROR_INVALID_DRIVE:
    case ERROR_INVALID_HANDLE:
      return FileCause::kInvalidFile;
    case ERROR_CURRENT_DIRECTORY:
      return FileCause::kRemoveCurrentDirectory;
    case ERROR_NEGATIVE_SEEK:
    case ERROR_SEEK:
    case ERROR_SEEK_ON_DEVICE:
      return FileCause::kBadSeek;
    case ERROR_BAD_UNIT:
    case ERROR_CRC:
    case ERROR_GEN_FAILURE:
    case ERROR_IO_DEVICE:
    case ERROR_NOT_READY:
    case ERROR_READ_FAULT:
    case ERROR_WRITE_FAULT:
      return FileCause::kHardInputOutput;
    case ERROR_SHARING_VIOLATION:
      return FileCause::kSharingViolation;
    case ERROR_LOCK_VIOLATION:
      return FileCause::kLockViolation;
    case ERROR_DISK_FULL:
    case ERROR_FILE_TOO_LARGE:
    case ERROR_HANDLE_DISK_FULL:
      return FileCause::kDiskFull;
    case ERROR_HANDLE_EOF:
      return FileCause::kEndOfFile;
    default:
      return FileCause::kGeneric;
  }
}

#else

FileCause CauseOfSystemError(unsigned long error) {
  switch (error) {
    case 0:
      return FileCause::kNone;
    case ENOENT:
      return FileCause::kFileNotFound;
    case EILSEQ:
    case ELOOP:
    case ENAMETOOLONG:
    case ENOTDIR:
    case EXDEV:
      return FileCause::kBadPath;
    case EMFILE:
    case ENFILE:
      return FileCause::kTooManyOpenFiles;
    case EACCES:
    case EEXIST:
    case EISDIR:
    case ENOTEMPTY:
    case EPERM:
    case EROFS:
    case ETXTBSY:
      return FileCause::kAccessDenied;
    case EBADF:
    case ENODEV:
    case ENXIO:
      return FileCause::kInvalidFile;
    case ESPIPE:
      return FileCause::kBadSeek;
    case EIO:
      return FileCause::kHardInputOutput;
    case EDEADLK:
    case ENOLCK:
      return FileCause::kLockViolation;
    case EDQUOT:
    case EFBIG:
    case ENOSPC:
      return FileCause::kDiskFull;
    default:
      return FileCause::kGeneric;
  }
}

#endif

}  // namespace vela::platform

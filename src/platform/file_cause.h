// Why a file operation failed: the codes that "GetLastError" of the file classes gives.
#pragma once

namespace vela::platform {

enum class [[nodiscard]] FileCause : int{
    kNone = 0,
    kGeneric = 1,
    kFileNotFound = 2,
    kBadPath = 3,
    kTooManyOpenFiles = 4,
    kAccessDenied = 5,
    kInvalidFile = 6,
    kRemoveCurrentDirectory = 7,
    kDirectoryFull = 8,
    kBadSeek = 9,
    kHardInputOutput = 10,
    kSharingViolation = 11,
    kLockViolation = 12,
    kDiskFull = 13,
    kEndOfFile = 14,
};

// The cause of an error number of the system: errno, or GetLastError() on Windows.
FileCause CauseOfSystemError(unsigned long error);

}  // namespace vela::platform

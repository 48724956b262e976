// The sharing of open files where the system has none.
//
// Four bytes far behind the end of any file stand for: somebody reads, somebody writes, somebody
// denies reading, somebody denies writing. Whoever opens the file holds a shared lock on the bytes
// that are true of it, and is refused when another one holds a lock that contradicts. The locks
// belong to the open file description, so they work between two objects of one process and go when
// the last handle to it closes, however the process ends.
#pragma once

#if !defined(_WIN32)

#include "platform/file_handle.h"

namespace vela::platform {

// Marks an open regular file. kSharingViolation when the options contradict another mark; then, as
// after any failure, the descriptor is to be closed. Two that open at the same instant may both be
// refused, never both let in.
FileCause MarkOpen(int descriptor, const FileOptions& options);

// Whether anybody has the file open for reading or writing.
bool IsMarkedOpen(const char* name);

}  // namespace vela::platform

#endif

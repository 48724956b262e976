#if defined(_WIN32)

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <windows.h>

#include "platform/file_handle.h"

namespace vela::platform {
namespace {

HANDLE HandleOf(std::intptr_t handle) { return reinterpret_cast<HANDLE>(handle); }

FileCause CauseOfLastError() { return CauseOfSystemError(GetLastError()); }

// Empty for what is no name.
std::wstring WideName(std::string_view name) {
  if (name.empty() || name.size() > 0x7FFF * 3 || name.find('\0') != std::string_view::npos) {
    return {};
  }
  std::wstring wide(name.size(), L'\0');
  const int units =
      MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, name.data(), static_cast<int>(name.size()),
                          wide.data(), static_cast<int>(wide.size()));
  wide.resize(static_cast<std::size_t>(units));
  return wide;
}

bool IsFolder(const std::wstring& name) {
  const DWORD attributes = GetFileAttributesW(name.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// A folder fails in several ways, depending on how its name ends.
FileCause CauseOfName(const std::wstring& name) {
  const FileCause cause = CauseOfLastError();
  return IsFolder(name) ? FileCause::kAccessDenied : cause;
}

DWORD AccessRights(FileAccess access) {
  return (CanRead(access) ? GENERIC_READ : 0) | (CanWrite(access) ? GENERIC_WRITE : 0);
}

DWORD ShareMode(const FileOptions& options) {
  return (options.shares_reading ? FILE_SHARE_READ : 0) |
         (options.shares_writing ? FILE_SHARE_WRITE : 0);
}

DWORD Disposition(FileCreation creation) {
  switch (creation) {
    case FileCreation::kCreateAlways:
      return CREATE_ALWAYS;
    case FileCreation::kOpenAlways:
      return OPEN_ALWAYS;
    default:
      return OPEN_EXISTING;
  }
}

OVERLAPPED PlaceOf(std::int64_t offset) {
  OVERLAPPED place = {};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32);
  return place;
}

// Calls transfer(bytes so far, bytes to go, bytes moved), which works like ReadFile, to the end.
template <class Transfer>
FileCause TransferAll(std::size_t size, std::size_t& done, const Transfer& transfer) {
  constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
  done = 0;
  while (done < size) {
    DWORD moved = 0;
    if (!transfer(done, static_cast<DWORD>(std::min(size - done, kMostAtOnce)), &moved)) {
      return GetLastError() == ERROR_HANDLE_EOF ? FileCause::kNone : CauseOfLastError();
    }
    if (moved == 0) break;
    done += moved;
  }
  return FileCause::kNone;
}

// All or nothing: what fails leaves nothing under the new name.
FileCause MoveToOtherDisk(const std::wstring& from, const std::wstring& to) {
  if (IsFolder(from)) return FileCause::kAccessDenied;
  if (!CopyFileW(from.c_str(), to.c_str(), TRUE)) {
    const DWORD error = GetLastError();
    if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) DeleteFileW(to.c_str());
    return CauseOfSystemError(error);
  }
  if (DeleteFileW(from.c_str())) return FileCause::kNone;
  const FileCause cause = CauseOfLastError();
  DeleteFileW(to.c_str());
  return cause;
}

std::byte* At(void* data, std::size_t offset) { return static_cast<std::byte*>(data) + offset; }
const std::byte* At(const void* data, std::size_t offset) {
  return static_cast<const std::byte*>(data) + offset;
}

}  // namespace

FileCause FileHandle::Open(std::string_view name, const FileOptions& options) {
  static_cast<void>(Close());
  const std::wstring path = WideName(name);
  if (path.empty()) return FileCause::kBadPath;
  SECURITY_ATTRIBUTES security = {sizeof security, nullptr, options.is_inheritable};
  const HANDLE opened =
      CreateFileW(path.c_str(), AccessRights(options.access), ShareMode(options), &security,
                  Disposition(options.creation), FILE_ATTRIBUTE_NORMAL, nullptr);
  if (opened == INVALID_HANDLE_VALUE) return CauseOfName(path);
  const DWORD type = GetFileType(opened) & ~static_cast<DWORD>(FILE_TYPE_REMOTE);
  if (type == FILE_TYPE_PIPE) {
    CloseHandle(opened);
    return FileCause::kInvalidFile;
  }
  handle_ = reinterpret_cast<std::intptr_t>(opened);
  access_ = options.access;
  is_seekable_ = type == FILE_TYPE_DISK;
  return FileCause::kNone;
}

FileCause FileHandle::Close() {
  if (!IsOpen()) return FileCause::kInvalidFile;
  return CloseHandle(HandleOf(std::exchange(handle_, kClosed))) ? FileCause::kNone
                                                                : CauseOfLastError();
}

FileCause FileHandle::Read(void* data, std::size_t size, std::size_t& done) {
  done = 0;
  if (!IsOpen()) return FileCause::kInvalidFile;
  return TransferAll(size, done, [&](std::size_t from, DWORD bytes, DWORD* moved) {
    return ReadFile(HandleOf(handle_), At(data, from), bytes, moved, nullptr);
  });
}

FileCause FileHandle::Write(const void* data, std::size_t size, std::size_t& done) {
  done = 0;
  if (!IsOpen()) return FileCause::kInvalidFile;
  return TransferAll(size, done, [&](std::size_t from, DWORD bytes, DWORD* moved) {
    return WriteFile(HandleOf(handle_), At(data, from), bytes, moved, nullptr);
  });
}

FileCause FileHandle::ReadAt(std::int64_t offset, void* data, std::size_t size, std::size_t& done) {
  if (!is_seekable_) return Read(data, size, done);
  done = 0;
  if (!IsOpen()) return FileCause::kInvalidFile;
  return TransferAll(size, done, [&](std::size_t from, DWORD bytes, DWORD* moved) {
    OVERLAPPED place = PlaceOf(offset + static_cast<std::int64_t>(from));
    return ReadFile(HandleOf(handle_), At(data, from), bytes, moved, &place);
  });
}

FileCause FileHandle::WriteAt(std::int64_t offset, const void* data, std::size_t size,
                              std::size_t& done) {
  if (!is_seekable_) return Write(data, size, done);
  done = 0;
  if (!IsOpen()) return FileCause::kInvalidFile;
  return TransferAll(size, done, [&](std::size_t from, DWORD bytes, DWORD* moved) {
    OVERLAPPED place = PlaceOf(offset + static_cast<std::int64_t>(from));
    return WriteFile(HandleOf(handle_), At(data, from), bytes, moved, &place);
  });
}

FileCause FileHandle::Seek(std::int64_t offset, SeekFrom from, std::int64_t& position) {
  if (!IsOpen()) return FileCause::kInvalidFile;
  if (!is_seekable_) return FileCause::kBadSeek;
  LARGE_INTEGER distance, reached;
  distance.QuadPart = offset;
  const DWORD method = from == SeekFrom::kBegin     ? FILE_BEGIN
                       : from == SeekFrom::kCurrent ? FILE_CURRENT
                                                    : FILE_END;
  if (!SetFilePointerEx(HandleOf(handle_), distance, &reached, method)) return FileCause::kBadSeek;
  position = reached.QuadPart;
  return FileCause::kNone;
}

FileCause FileHandle::GetSize(std::int64_t& size) const {
  if (!IsOpen()) return FileCause::kInvalidFile;
  LARGE_INTEGER found = {};
  if (is_seekable_ && !GetFileSizeEx(HandleOf(handle_), &found)) return CauseOfLastError();
  size = found.QuadPart;
  return FileCause::kNone;
}

FileCause FileHandle::Flush() {
  if (!IsOpen()) return FileCause::kInvalidFile;
  if (!CanWrite(access_)) return FileCause::kAccessDenied;
  if (!is_seekable_) return FileCause::kNone;
  return FlushFileBuffers(HandleOf(handle_)) ? FileCause::kNone : CauseOfLastError();
}

FileCause RemoveFile(std::string_view name) {
  const std::wstring path = WideName(name);
  if (path.empty()) return FileCause::kBadPath;
  return DeleteFileW(path.c_str()) ? FileCause::kNone : CauseOfName(path);
}

FileCause RenameFile(std::string_view from, std::string_view to) {
  const std::wstring old_path = WideName(from), new_path = WideName(to);
  if (old_path.empty() || new_path.empty()) return FileCause::kBadPath;
  if (MoveFileExW(old_path.c_str(), new_path.c_str(), 0)) return FileCause::kNone;
  return GetLastError() == ERROR_NOT_SAME_DEVICE ? MoveToOtherDisk(old_path, new_path)
                                                 : CauseOfLastError();
}

}  // namespace vela::platform

#endif

#include "platform/file_stream.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace vela::platform {

void FileStream::Attach(FileHandle& file, Mode mode) {
  static_cast<void>(Detach());
  if (buffer_ == nullptr) buffer_ = std::make_unique_for_overwrite<char[]>(kBufferBytes);
  file_ = &file;
  mode_ = mode;
}

FileCause FileStream::Detach() {
  if (file_ == nullptr) return FileCause::kInvalidFile;
  const FileCause cause = Flush();
  file_ = nullptr;
  base_ = 0;
  at_ = filled_ = 0;
  is_writing_ = false;
  return cause;
}

FileCause FileStream::Flush() {
  if (file_ == nullptr) return FileCause::kInvalidFile;
  if (!is_writing_) return FileCause::kNone;
  if (at_ != 0) {
    if (mode_.appends) static_cast<void>(file_->GetSize(base_));
    std::size_t done = 0;
    const FileCause cause = file_->WriteAt(base_, buffer_.get(), at_, done);
    base_ += static_cast<std::int64_t>(done);
    if (done < at_) {
      // What is left stays, so that every later attempt tells of it.
      std::memmove(buffer_.get(), buffer_.get() + done, at_ - done);
      at_ -= done;
      return cause != FileCause::kNone ? cause : FileCause::kDiskFull;
    }
    at_ = 0;
  }
  is_writing_ = false;
  return FileCause::kNone;
}

FileCause FileStream::BeginReading() {
  if (file_ == nullptr) return FileCause::kInvalidFile;
  if (!CanRead(file_->Access())) return FileCause::kAccessDenied;
  return Flush();
}

FileCause FileStream::BeginWriting() {
  if (is_writing_) return FileCause::kNone;
  base_ = Position();
  at_ = filled_ = 0;
  is_writing_ = true;
  return mode_.appends ? file_->GetSize(base_) : FileCause::kNone;
}

FileCause FileStream::Read(void* data, std::size_t size, std::size_t& done) {
  done = 0;
  if (const FileCause cause = BeginReading(); cause != FileCause::kNone) return cause;
  const auto take_buffered = [&] {
    const std::size_t bytes = std::min(size - done, filled_ - at_);
    if (bytes != 0) std::memcpy(static_cast<char*>(data) + done, buffer_.get() + at_, bytes);
    at_ += bytes;
    done += bytes;
  };
  take_buffered();
  if (done == size) return FileCause::kNone;
  base_ = Position();
  at_ = filled_ = 0;
  if (size - done < kBufferBytes) {
    const FileCause cause = file_->ReadAt(base_, buffer_.get(), kBufferBytes, filled_);
    take_buffered();
    return done == size ? FileCause::kNone : cause;
  }
  std::size_t direct = 0;
  const FileCause cause =
      file_->ReadAt(base_, static_cast<char*>(data) + done, size - done, direct);
  base_ += static_cast<std::int64_t>(direct);
  done += direct;
  return cause;
}

FileCause FileStream::Write(const void* data, std::size_t size, std::size_t& done) {
  done = 0;
  if (file_ == nullptr) return FileCause::kInvalidFile;
  if (!CanWrite(file_->Access())) return FileCause::kAccessDenied;
  // To write nothing does not move, not to the end of a file that is added to either.
  if (size == 0) return FileCause::kNone;
  if (const FileCause cause = BeginWriting(); cause != FileCause::kNone) return cause;
  if (size > kBufferBytes - at_) {
    if (const FileCause cause = Flush(); cause != FileCause::kNone) return cause;
    if (const FileCause cause = BeginWriting(); cause != FileCause::kNone) return cause;
    if (size >= kBufferBytes) {
      const FileCause cause = file_->WriteAt(base_, data, size, done);
      base_ += static_cast<std::int64_t>(done);
      return cause;
    }
  }
  std::memcpy(buffer_.get() + at_, data, size);
  at_ += size;
  done = size;
  return FileCause::kNone;
}

FileCause FileStream::ReadText(void* data, std::size_t size, std::size_t& done) {
  if (!mode_.translates) return Read(data, size, done);
  done = 0;
  if (const FileCause cause = BeginReading(); cause != FileCause::kNone) return cause;
  char* const text = static_cast<char*>(data);
  for (int ch; done < size && (ch = Get()) != kEnd; ++done) {
    if (ch == '\r' && Peek() == '\n') ch = Get();
    text[done] = static_cast<char>(ch);
  }
  return FileCause::kNone;
}

FileCause FileStream::WriteText(const void* data, std::size_t size, std::size_t& done) {
  if (!mode_.translates) return Write(data, size, done);
  const char* const text = static_cast<const char*>(data);
  for (done = 0; done < size;) {
    const char* const from = text + done;
    const void* const feed = std::memchr(from, '\n', size - done);
    const std::size_t plain = feed == nullptr
                                  ? size - done
                                  : static_cast<std::size_t>(static_cast<const char*>(feed) - from);
    std::size_t written = 0;
    FileCause cause = Write(from, plain, written);
    done += written;
    if (cause == FileCause::kNone && feed != nullptr) {
      cause = Write("\r\n", 2, written);
      if (cause == FileCause::kNone) ++done;
    }
    if (cause != FileCause::kNone) return cause;
  }
  return FileCause::kNone;
}

bool FileStream::Fill() {
  if (!is_writing_ && at_ < filled_) return true;
  if (BeginReading() != FileCause::kNone) return false;
  base_ = Position();
  at_ = filled_ = 0;
  return file_->ReadAt(base_, buffer_.get(), kBufferBytes, filled_) == FileCause::kNone &&
         filled_ != 0;
}

int FileStream::Get() { return Fill() ? static_cast<unsigned char>(buffer_[at_++]) : kEnd; }

int FileStream::Peek() { return Fill() ? static_cast<unsigned char>(buffer_[at_]) : kEnd; }

FileCause FileStream::Seek(std::int64_t offset, SeekFrom from, std::int64_t& position) {
  if (const FileCause cause = Flush(); cause != FileCause::kNone) return cause;
  std::int64_t origin = 0;
  if (from == SeekFrom::kCurrent) origin = Position();
  if (from == SeekFrom::kEnd) {
    if (const FileCause cause = file_->GetSize(origin); cause != FileCause::kNone) return cause;
  }
  if (offset > std::numeric_limits<std::int64_t>::max() - origin) return FileCause::kBadSeek;
  const std::int64_t target = origin + offset;
  if (target < 0) return FileCause::kBadSeek;
  if (target >= base_ && target - base_ <= static_cast<std::int64_t>(filled_)) {
    at_ = static_cast<std::size_t>(target - base_);
  } else {
    base_ = target;
    at_ = filled_ = 0;
  }
  position = target;
  return FileCause::kNone;
}

}  // namespace vela::platform

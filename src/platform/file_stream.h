// Buffered reading and writing of an open file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "platform/file_handle.h"

namespace vela::platform {

// One position for reading and writing, as with the streams of the C library, but a read may follow
// a write and a write a read without anything in between. The stream borrows the handle and keeps
// the position to itself. Operations on a stream without a file are kInvalidFile.
class FileStream {
 public:
  struct Mode {
    bool appends = false;     // every write goes to the end of the file
    bool translates = false;  // the text operations store a line feed as CR LF, and read it back
  };

  FileStream() = default;
  ~FileStream() { static_cast<void>(Detach()); }
  FileStream(const FileStream&) = delete;
  FileStream& operator=(const FileStream&) = delete;

  // At position 0 of a file that stays open until Detach, which writes what is buffered.
  void Attach(FileHandle& file, Mode mode);
  FileCause Detach();

  // done is what was transferred, also on failure. Fewer bytes than asked without a failure are the
  // end of the file. What is written can fail as late as the next Flush, Seek, read or Detach.
  FileCause Read(void* data, std::size_t size, std::size_t& done);
  FileCause Write(const void* data, std::size_t size, std::size_t& done);
  // The same for text: done counts the bytes on the caller's side.
  FileCause ReadText(void* data, std::size_t size, std::size_t& done);
  FileCause WriteText(const void* data, std::size_t size, std::size_t& done);

  static constexpr int kEnd = -1;
  // The next byte, or kEnd at the end and when it cannot be read. Peek leaves the position.
  int Get();
  int Peek();

  // Whether the text operations translate.
  bool Translates() const { return mode_.translates; }

  // As FileHandle::Seek. A read after a seek inside the buffer costs nothing.
  FileCause Seek(std::int64_t offset, SeekFrom from, std::int64_t& position);
  std::int64_t Position() const { return base_ + static_cast<std::int64_t>(at_); }
  FileCause Flush();

 private:
  static constexpr std::size_t kBufferBytes = 65536;

  FileCause BeginReading();
  FileCause BeginWriting();
  bool Fill();

  FileHandle* file_ = nullptr;
  Mode mode_;
  std::unique_ptr<char[]> buffer_;
  // The buffer holds the bytes from base_ on: filled_ that were read, or at_ that are to be
  // written.
  std::int64_t base_ = 0;
  std::size_t at_ = 0;
  std::size_t filled_ = 0;
  bool is_writing_ = false;
};

}  // namespace vela::platform

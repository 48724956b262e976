// The script class "file".
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "frame/interface/tessel_object.h"
#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "platform/file_handle.h"
#include "text/text_encoding.h"

// A file of bytes. Failures of the operating system are not statuses: a member stores a cause code
// (see platform/file_cause.h), which stays until the next failure and "GetLastError" reads, and its
// result is 0. So it is for a member of a closed file, but for those that say status 290.
//
// Positions and lengths are 32-bit and unsigned: one of 4 GiB or more is 0 with the cause bad seek.
//
// A buffer argument is a string, a row of a vector or a scalar. One of fewer bytes than the member
// is asked to move is status 3. A string that is read into becomes exactly what was read; a string
// that is written from may give its terminator too.
class CMSCFile : public vela::member::WithMembers<CMSCFile, TesselCObject> {
 public:
  explicit CMSCFile(unsigned type_id);

  using TesselCObject::GetString;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "file"; }
  static const CClassMember* MemberTable();
  // The name of the open file and " (open)", or " (close)".
  int GetString(CStringUTF8& text) override;
  int GetString(const MSOINDICES* at, CStringUTF8& text) override;

  // (string name, uint flags): 1, or 0. What was open is closed first. The name is UTF-8, the flags
  // are those of open_mode.h.
  int Open(CTCall* call);
  int Close(CTCall* call);
  // (int offset, int from): the new position; from is 0 the beginning, 1 the position, 2 the end,
  // and any other does nothing.
  int Seek(CTCall* call);
  int SeekToBegin(CTCall* call);
  int SeekToEnd(CTCall* call);
  // (buffer, uint count): bytes written. Text is converted to the write encoding first, unless that
  // is UTF-8 or 0; encodings from 4 on are refused with the cause generic.
  int Write(CTCall* call);
  // (buffer, uint count): bytes read.
  int Read(CTCall* call);
  int GetPosition(CTCall* call);
  int GetLastError(CTCall* call);
  // (string from, string to), (string name): 1, or 0; see platform/file_handle.h. Of any file, not
  // the open one.
  int Rename(CTCall* call);
  int Remove(CTCall* call);
  int Flush(CTCall* call);
  // The system's handle, 0 when closed.
  int GetHandle(CTCall* call);
  // (buffer, int size, int count, int little_endian): whole items moved; sizes 1, 2 and 4, or 4 and
  // 8, and 0 for any other. Status 290 when closed. The buffer of a write stays as it was.
  int ReadInt(CTCall* call);
  int WriteInt(CTCall* call);
  int ReadFloat(CTCall* call);
  int WriteFloat(CTCall* call);
  int IsOpen(CTCall* call);
  int GetLength(CTCall* call);
  int SetWriteEncoding(CTCall* call);
  // At position 0, writes the mark of the write encoding; bytes written.
  int WriteBOM(CTCall* call);
  // The encoding of the first 51200 bytes, or 255; the position stays.
  int DetectEncode(CTCall* call);

 protected:
  using FileCause = vela::platform::FileCause;
  using SeekFrom = vela::platform::SeekFrom;

  // --- What the members move bytes with; a derived class puts its stream in between. ---
  virtual FileCause ReadBytes(void* data, std::size_t size, std::size_t& done);
  virtual FileCause WriteBytes(const void* data, std::size_t size, std::size_t& done);
  virtual FileCause SeekTo(std::int64_t offset, SeekFrom from, std::int64_t& position);
  virtual FileCause GetSize(std::int64_t& size);
  virtual FileCause FlushFile();
  virtual FileCause CloseFile();
  // "Read", which may read text in another way than binary data.
  virtual FileCause ReadData(void* data, std::size_t size, std::size_t& done);

  // Opens the handle; the name is set when it worked.
  bool OpenHandle(const CStringUTF8& name, unsigned flags);
  // Stores the cause of a failure; whether there was none.
  bool Succeeds(FileCause cause) {
    if (cause != FileCause::kNone) last_error_ = static_cast<int>(cause);
    return cause == FileCause::kNone;
  }
  // The number that "SetWriteEncoding" was given, unless the file itself has an encoding.
  unsigned WriteEncoding() const {
    return file_encoding_ ? static_cast<unsigned>(*file_encoding_) : write_encoding_;
  }
  // The text in the write encoding. The converter refuses encodings that it does not know.
  FileCause Encode(std::string_view text, std::string& encoded) const;
  // The memory of a buffer argument, of which the member touches bytes.
  static std::byte* BufferOf(vela::member::Arguments& args, unsigned arg, std::size_t bytes);
  // The bytes that a call of "Write" is given; text keeps them alive.
  static std::string_view DataOf(vela::member::Arguments& args, CStringUTF8& text);

  vela::platform::FileHandle handle_;
  CStringUTF8 name_;  // empty unless open
  // Of the text of the open file, where it is known; "SetWriteEncoding" overrules it.
  std::optional<vela::text::TextEncoding> file_encoding_;

 private:
  struct Items;

  std::int64_t Position();
  void ReturnPosition(vela::member::Arguments& args, FileCause cause, std::int64_t position);
  void ReturnReached(vela::member::Arguments& args, std::int64_t offset, SeekFrom from);
  std::size_t ReadIntoString(vela::member::Arguments& args, std::size_t count);
  std::size_t ReadItems(const Items& items);
  std::size_t WriteItems(const Items& items);
  int MoveItems(CTCall* call, bool is_float, std::size_t (CMSCFile::*move)(const Items&));

  int last_error_ = 0;
  unsigned write_encoding_ = static_cast<unsigned>(vela::text::TextEncoding::kUtf8);
};

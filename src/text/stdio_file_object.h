// The script class "stdioFile".
#pragma once

#include <utility>

#include "platform/file_stream.h"
#include "text/file_object.h"
#include "text/line_reader.h"

// A file with a buffered stream: text is read by lines and written as text. The members of "file"
// that move bytes work on the stream too, so they can be mixed with reading lines in any order.
//
// Read, Write and WriteString take a line feed for the platform's line end, unless the file is
// opened as binary: on Windows, CR LF. WriteString does so before it encodes, Read and Write of
// bytes in UTF-16 not at all. Everything else is bytes as they are.
//
// Opened as Unicode text, a file is read by lines and written by WriteString in the encoding of its
// byte-order mark, or in UTF-8 without one; a new file begins with the mark of UTF-8. One that is
// only written and not binary gets no mark, and without one is written in the write encoding.
class CMSCSTDIOFile : public vela::member::WithMembers<CMSCSTDIOFile, CMSCFile> {
 public:
  explicit CMSCSTDIOFile(unsigned type_id);

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "stdioFile"; }
  static const CClassMember* MemberTable();

  // (string name, uint flags): 1, or 0 with the cause stored. See open_mode.h. A file that was open
  // stays so, with the cause disk full, when what is buffered for it cannot be written.
  int Open(CTCall* call);
  // (buffer, uint count): bytes written, in no encoding but their own; the cause of a failure is
  // generic.
  int Write(CTCall* call);
  // (string s): the bytes of s and a line feed, in the write encoding; how many were given to the
  // stream, or 0 with the cause disk full.
  int WriteString(CTCall* call);
  // (string& s, uint options): the next line, without its end (LF, CR LF or a lone CR) unless bit 0
  // of options is set; 1, or 0 at the end. At most 204160 bytes of a line at a time; see
  // line_reader.h. A file that cannot be read on is at its end, with the cause. Status 290
  // when the file is not open, 3 for a whole array or vector.
  int ReadString(CTCall* call);
  // The encoding of the byte-order mark at the position, in which lines are read from now on,
  // behind it; 0 without one.
  int CheckUniCodeBOM(CTCall* call);
  // (uint type): lines are read in that encoding: 0 bytes as they are, 1 UTF-8, 2 and 3 UTF-16
  // little and big-endian. 1, or 0 for any other.
  int SetUniCodeType(CTCall* call);
  // (int mode, buffer, int size): stores what was read and a terminator in size bytes; the bytes
  // without it. Mode 0 is a word between white space, 1 a line, 2 a decimal number as text, and any
  // other nothing. What does not fit is read next.
  int Scan(CTCall* call);

 protected:
  FileCause ReadBytes(void* data, std::size_t size, std::size_t& done) override;
  FileCause WriteBytes(const void* data, std::size_t size, std::size_t& done) override;
  FileCause SeekTo(std::int64_t offset, SeekFrom from, std::int64_t& position) override;
  FileCause GetSize(std::int64_t& size) override;
  FileCause FlushFile() override;
  FileCause CloseFile() override;
  FileCause ReadData(void* data, std::size_t size, std::size_t& done) override;

 private:
  class HandleSource final : public vela::text::ByteSource {
   public:
    explicit HandleSource(vela::platform::FileHandle& handle) : handle_(handle) {}
    std::size_t ReadAt(std::int64_t offset, void* data, std::size_t size) override;
    std::int64_t GetEnd() override;
    // Why reading stopped short of the end, told once.
    FileCause TakeFailure() { return std::exchange(failure_, FileCause::kNone); }

   private:
    vela::platform::FileHandle& handle_;
    FileCause failure_ = FileCause::kNone;
  };

  // mark: the encoding of a file that is only added to, from its mark.
  void BeginText(unsigned flags, vela::text::TextEncoding mark);
  // The encoding of the mark at the position, which moves behind it.
  vela::text::TextEncoding TakeMark();
  void BeginLines();
  void LeaveLines();

  HandleSource source_{handle_};
  vela::platform::FileStream stream_;
  vela::text::LineReader lines_;
};

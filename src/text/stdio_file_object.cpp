#include "text/stdio_file_object.h"

#include <cstring>
#include <limits>
#include <typeinfo>

#include "frame/member/table.h"
#include "text/open_mode.h"
#include "text/stream_scan.h"
#include "text/string_object.h"

using vela::member::Arguments;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Method;
using vela::member::NoArguments;
using vela::member::Run;
using vela::platform::FileCause;
using vela::platform::SeekFrom;
using vela::text::ScanMode;
using vela::text::TextEncoding;

namespace {

const CClassMember kStdioFileMembers[] = {
    Method("Open", &CMSCSTDIOFile::Open),
    Method("Close", &CMSCFile::Close),
    Method("Seek", &CMSCFile::Seek),
    Method("SeekToBegin", &CMSCFile::SeekToBegin),
    Method("SeekToEnd", &CMSCFile::SeekToEnd),
    Method("Write", &CMSCSTDIOFile::Write),
    Method("Read", &CMSCFile::Read),
    Method("GetPosition", &CMSCFile::GetPosition),
    Method("GetLastError", &CMSCFile::GetLastError),
    Method("Rename", &CMSCFile::Rename),
    Method("Remove", &CMSCFile::Remove),
    Method("Flush", &CMSCFile::Flush),
    Method("WriteString", &CMSCSTDIOFile::WriteString),
    Method("ReadString", &CMSCSTDIOFile::ReadString),
    Method("CheckUniCodeBOM", &CMSCSTDIOFile::CheckUniCodeBOM),
    Method("SetUniCodeType", &CMSCSTDIOFile::SetUniCodeType),
    Method("Scan", &CMSCSTDIOFile::Scan),
    {},
};

constexpr DWORD kKeepLineEnd = 1;

// What a kind of operation stores, whatever the system says.
FileCause Instead(FileCause cause, FileCause of_failure) {
  return cause == FileCause::kNone ? cause : of_failure;
}

bool IsWide(unsigned encoding) {
  return encoding == static_cast<unsigned>(TextEncoding::kUtf16Little) ||
         encoding == static_cast<unsigned>(TextEncoding::kUtf16Big);
}

std::string WithCarriageReturns(std::string_view text) {
  std::string translated;
  translated.reserve(text.size() + 1);
  for (const char ch : text) {
    if (ch == '\n') translated += '\r';
    translated += ch;
  }
  return translated;
}

// Of a file that is opened for adding to it only, and so cannot be read afterwards.
TextEncoding MarkOfFile(const CStringUTF8& name) {
  vela::platform::FileHandle file;
  char bytes[vela::text::kMostMarkBytes];
  std::size_t done = 0;
  const vela::platform::FileOptions options = {.shares_reading = true, .shares_writing = true};
  if (file.Open(name.View(), options) == FileCause::kNone) {
    static_cast<void>(file.ReadAt(0, bytes, sizeof bytes, done));
  }
  return vela::text::EncodingOfMark({bytes, done});
}

// The target becomes the line. A string keeps its memory from line to line.
int StoreLine(const tagMSOOBJVECT& target, std::string_view line) {
  CScriptVelaObject& object = *target.object;
  if (typeid(object) == typeid(CScriptVelaString)) {
    return static_cast<CScriptVelaString&>(object).AssignPadded(&target.indices, line);
  }
  return object.SetStringValue(&target.indices, CStringUTF8(line));
}

}  // namespace

std::size_t CMSCSTDIOFile::HandleSource::ReadAt(std::int64_t offset, void* data, std::size_t size) {
  std::size_t done = 0;
  const FileCause cause = handle_.ReadAt(offset, data, size, done);
  if (cause != FileCause::kNone) failure_ = cause;
  return done;
}

// A file without a size is a device, or made up as it is read.
std::int64_t CMSCSTDIOFile::HandleSource::GetEnd() {
  std::int64_t size = 0;
  return handle_.GetSize(size) == FileCause::kNone && size > 0
             ? size
             : std::numeric_limits<std::int64_t>::max();
}

CMSCSTDIOFile::CMSCSTDIOFile(unsigned type_id) : WithMembers(type_id) {}

const CRuntimeClass* CMSCSTDIOFile::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"CMSCSTDIOFile", sizeof(CMSCSTDIOFile),
                                           CMSCFile::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* CMSCSTDIOFile::MemberTable() { return kStdioFileMembers; }

void CMSCSTDIOFile::BeginLines() {
  Succeeds(Instead(stream_.Flush(), FileCause::kDiskFull));
  lines_.Start(source_, stream_.Position());
}

// The stream goes on where the lines stopped.
void CMSCSTDIOFile::LeaveLines() {
  if (!lines_.IsActive()) return;
  std::int64_t reached = 0;
  static_cast<void>(stream_.Seek(lines_.Position(), SeekFrom::kBegin, reached));
  lines_.Stop();
}

FileCause CMSCSTDIOFile::ReadBytes(void* data, std::size_t size, std::size_t& done) {
  LeaveLines();
  return Instead(stream_.Read(data, size, done), FileCause::kGeneric);
}

FileCause CMSCSTDIOFile::WriteBytes(const void* data, std::size_t size, std::size_t& done) {
  LeaveLines();
  return Instead(stream_.Write(data, size, done), FileCause::kDiskFull);
}

FileCause CMSCSTDIOFile::ReadData(void* data, std::size_t size, std::size_t& done) {
  LeaveLines();
  const FileCause cause = IsWide(static_cast<unsigned>(lines_.Encoding()))
                              ? stream_.Read(data, size, done)
                              : stream_.ReadText(data, size, done);
  return Instead(cause, FileCause::kGeneric);
}

FileCause CMSCSTDIOFile::SeekTo(std::int64_t offset, SeekFrom from, std::int64_t& position) {
  LeaveLines();
  return Instead(stream_.Seek(offset, from, position), FileCause::kBadSeek);
}

FileCause CMSCSTDIOFile::GetSize(std::int64_t& size) {
  const FileCause cause = stream_.Flush();
  return cause == FileCause::kNone ? handle_.GetSize(size) : cause;
}

FileCause CMSCSTDIOFile::FlushFile() {
  LeaveLines();
  return Instead(stream_.Flush(), FileCause::kDiskFull);
}

FileCause CMSCSTDIOFile::CloseFile() {
  lines_.Stop();
  const FileCause flushed = stream_.Detach();
  const FileCause closed = handle_.Close();
  file_encoding_.reset();
  return Instead(flushed == FileCause::kNone ? closed : flushed, FileCause::kDiskFull);
}

TextEncoding CMSCSTDIOFile::TakeMark() {
  char bytes[vela::text::kMostMarkBytes];
  std::size_t done = 0;
  std::int64_t position = 0;
  if (SeekTo(0, SeekFrom::kCurrent, position) != FileCause::kNone) return TextEncoding::kBytes;
  static_cast<void>(ReadBytes(bytes, sizeof bytes, done));
  const TextEncoding encoding = vela::text::EncodingOfMark({bytes, done});
  const auto mark = static_cast<std::int64_t>(vela::text::MarkOf(encoding).size());
  static_cast<void>(SeekTo(position + mark, SeekFrom::kBegin, position));
  return encoding;
}

void CMSCSTDIOFile::BeginText(unsigned flags, TextEncoding mark) {
  lines_.SetEncoding(TextEncoding::kBytes);
  if (!vela::text::IsText(flags)) return;
  if (CanRead(handle_.Access())) mark = TakeMark();
  if (mark != TextEncoding::kBytes) file_encoding_ = mark;
  if (!vela::text::IsUnicodeStream(flags)) return;
  if (!file_encoding_) file_encoding_ = TextEncoding::kUtf8;
  lines_.SetEncoding(*file_encoding_);
  std::int64_t size = 0;
  if ((flags & vela::text::open_flag::kCreate) != 0 && handle_.GetSize(size) == FileCause::kNone &&
      size == 0) {
    const std::string_view new_mark = vela::text::MarkOf(TextEncoding::kUtf8);
    std::size_t done = 0;
    static_cast<void>(WriteBytes(new_mark.data(), new_mark.size(), done));
  }
}

int CMSCSTDIOFile::Open(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const CStringUTF8 name = args.Text(0);
    const unsigned flags = args.Unsigned(1);
    // What cannot be written stays where it is, so that nothing is lost without a word.
    if (handle_.IsOpen() && !Succeeds(FlushFile())) return args.Return(0);
    static_cast<void>(CloseFile());
    const TextEncoding mark = vela::text::AddsText(flags) ? MarkOfFile(name) : TextEncoding::kBytes;
    const bool opens = OpenHandle(name, flags);
    if (opens) {
      stream_.Attach(handle_, vela::text::StreamModeOf(flags));
      BeginText(flags, mark);
    }
    args.Return(opens ? 1 : 0);
  });
}

int CMSCSTDIOFile::Write(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    CStringUTF8 text;
    const std::string_view data = DataOf(args, text);
    LeaveLines();
    std::size_t done = 0;
    const FileCause cause = IsWide(WriteEncoding())
                                ? stream_.Write(data.data(), data.size(), done)
                                : stream_.WriteText(data.data(), data.size(), done);
    Succeeds(Instead(cause, FileCause::kGeneric));
    args.Return(static_cast<unsigned>(done));
  });
}

int CMSCSTDIOFile::WriteString(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    CStringUTF8 text = args.Text(0);
    text += '\n';
    const std::string line =
        stream_.Translates() ? WithCarriageReturns(text.View()) : std::string(text.View());
    std::string encoded;
    FileCause cause = Encode(line, encoded);
    if (cause == FileCause::kNone) {
      std::size_t done = 0;
      cause = WriteBytes(encoded.data(), encoded.size(), done);
    }
    const std::size_t unit_bytes = IsWide(WriteEncoding()) ? 2 : 1;
    const std::size_t added = (line.size() - text.View().size()) * unit_bytes;
    args.Return(Succeeds(cause) ? static_cast<unsigned>(encoded.size() - added) : 0u);
  });
}

int CMSCSTDIOFile::ReadString(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    if (!handle_.IsOpen()) Fail(status::kNotOpen);
    const tagMSOOBJVECT target = args.Reference(0);
    if (target.object == nullptr) Fail(status::kUnresolved);
    if ((args.TypeId(0) & (kFlagAnyVector | kFlagAnyMatrix)) != 0) Fail(status::kBadArguments);
    const bool keeps_end = (args.Dword(1) & kKeepLineEnd) != 0;
    if (!lines_.IsActive()) BeginLines();
    std::string_view line;
    const bool was_read = lines_.Next(keeps_end, line);
    Succeeds(source_.TakeFailure());
    Check(StoreLine(target, line));
    args.Return(was_read ? 1 : 0);
  });
}

int CMSCSTDIOFile::CheckUniCodeBOM(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    lines_.SetEncoding(TakeMark());
    args.Return(static_cast<int>(lines_.Encoding()));
  });
}

int CMSCSTDIOFile::SetUniCodeType(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const unsigned type = args.Unsigned(0);
    const bool is_known = type < vela::text::kEncodings;
    if (is_known) lines_.SetEncoding(static_cast<TextEncoding>(type));
    args.Return(is_known ? 1 : 0);
  });
}

int CMSCSTDIOFile::Scan(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const int mode = args.Int(0);
    const int size = args.Int(2);
    if (size <= 0) return args.Return(0);
    const bool is_string = args.TypeId(1) == kTypeString;
    char* const buffer = is_string ? nullptr : static_cast<char*>(args.Buffer(1, size));
    const std::size_t most = static_cast<std::size_t>(size) - 1;
    LeaveLines();
    std::string text;
    if (handle_.IsOpen()) {
      text = vela::text::Scan(stream_, static_cast<ScanMode>(mode), most);
    } else {
      Succeeds(FileCause::kInvalidFile);
    }
    if (is_string) {
      const tagMSOOBJVECT target = args.Object(1);
      Check(target.object->SetStringValue(&target.indices, CStringUTF8(text)));
    } else {
      std::memcpy(buffer, text.c_str(), text.size() + 1);
    }
    args.Return(static_cast<int>(text.size()));
  });
}

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
  return Instead(stream_.ReadText(data, size, done), FileCause::kGeneric);
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

void CMSCSTDIOFile::BeginUnicode(unsigned flags) {
  if (!vela::text::IsUnicodeStream(flags)) return lines_.SetEncoding(TextEncoding::kBytes);
  TextEncoding encoding = TakeMark();
  if (encoding == TextEncoding::kBytes) encoding = TextEncoding::kUtf8;
  lines_.SetEncoding(encoding);
  std::int64_t size = 0;
  if ((flags & vela::text::open_flag::kCreate) != 0 && handle_.GetSize(size) == FileCause::kNone &&
      size == 0) {
    const std::string_view mark = vela::text::MarkOf(TextEncoding::kUtf8);
    std::size_t done = 0;
    static_cast<void>(WriteBytes(mark.data(), mark.size(), done));
  }
}

int CMSCSTDIOFile::Open(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const CStringUTF8 name = args.Text(0);
    const unsigned flags = args.Unsigned(1);
    static_cast<void>(CloseFile());
    const bool opens = OpenHandle(name, flags);
    if (opens) {
      stream_.Attach(handle_, vela::text::StreamModeOf(flags));
      BeginUnicode(flags);
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
    Succeeds(Instead(stream_.WriteText(data.data(), data.size(), done), FileCause::kGeneric));
    args.Return(static_cast<unsigned>(done));
  });
}

int CMSCSTDIOFile::WriteString(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    CStringUTF8 line = args.Text(0);
    line += '\n';
    std::string encoded;
    FileCause cause = Encode(line.View(), encoded);
    if (cause == FileCause::kNone) {
      LeaveLines();
      std::size_t done = 0;
      cause =
          Instead(stream_.WriteText(encoded.data(), encoded.size(), done), FileCause::kDiskFull);
    }
    args.Return(Succeeds(cause) ? static_cast<unsigned>(encoded.size()) : 0u);
  });
}

int CMSCSTDIOFile::ReadString(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    if (!handle_.IsOpen()) Fail(status::kNotOpen);
    const tagMSOOBJVECT target = args.Reference(0);
    if (target.object == nullptr) Fail(status::kUnresolved);
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

#include "text/file_object.h"

#include <algorithm>
#include <array>
#include <limits>
#include <span>

#include "frame/member/table.h"
#include "text/open_mode.h"

using vela::member::Arguments;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Method;
using vela::member::NoArguments;
using vela::member::Run;
using vela::platform::FileCause;
using vela::platform::SeekFrom;
using vela::text::TextEncoding;

namespace {

const CClassMember kFileMembers[] = {
    Method("Open", &CMSCFile::Open),
    Method("Close", &CMSCFile::Close),
    Method("Seek", &CMSCFile::Seek),
    Method("SeekToBegin", &CMSCFile::SeekToBegin),
    Method("SeekToEnd", &CMSCFile::SeekToEnd),
    Method("Write", &CMSCFile::Write),
    Method("Read", &CMSCFile::Read),
    Method("GetPosition", &CMSCFile::GetPosition),
    Method("GetLastError", &CMSCFile::GetLastError),
    Method("Rename", &CMSCFile::Rename),
    Method("Remove", &CMSCFile::Remove),
    Method("Flush", &CMSCFile::Flush),
    Method("GetHandle", &CMSCFile::GetHandle),
    Method("ReadInt", &CMSCFile::ReadInt),
    Method("WriteInt", &CMSCFile::WriteInt),
    Method("ReadFloat", &CMSCFile::ReadFloat),
    Method("WriteFloat", &CMSCFile::WriteFloat),
    Method("IsOpen", &CMSCFile::IsOpen),
    Method("GetLength", &CMSCFile::GetLength),
    Method("SetWriteEncoding", &CMSCFile::SetWriteEncoding),
    Method("WriteBOM", &CMSCFile::WriteBOM),
    Method("DetectEncode", &CMSCFile::DetectEncode),
    {},
};

constexpr std::size_t kDetectedBytes = 51200;
// What is read at first into a string when the size of the file says nothing, as with a device.
constexpr std::int64_t kUnknownRoom = std::int64_t{1} << 20;

}  // namespace

CMSCFile::CMSCFile(unsigned type_id) { InitTypeIDs(type_id); }

const CRuntimeClass* CMSCFile::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"CMSCFile", sizeof(CMSCFile),
                                           TesselCObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* CMSCFile::MemberTable() { return kFileMembers; }

int CMSCFile::GetString(CStringUTF8& text) { return GetString(nullptr, text) == status::kOk; }

int CMSCFile::GetString(const MSOINDICES*, CStringUTF8& text) try {
  CStringUTF8 described = name_;
  described += std::string_view(handle_.IsOpen() ? " (open)" : " (close)");
  text = described;
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

FileCause CMSCFile::ReadBytes(void* data, std::size_t size, std::size_t& done) {
  return handle_.Read(data, size, done);
}

FileCause CMSCFile::WriteBytes(const void* data, std::size_t size, std::size_t& done) {
  return handle_.Write(data, size, done);
}

FileCause CMSCFile::SeekTo(std::int64_t offset, SeekFrom from, std::int64_t& position) {
  return handle_.Seek(offset, from, position);
}

FileCause CMSCFile::GetSize(std::int64_t& size) { return handle_.GetSize(size); }

FileCause CMSCFile::FlushFile() { return handle_.Flush(); }

FileCause CMSCFile::CloseFile() { return handle_.Close(); }

FileCause CMSCFile::ReadData(void* data, std::size_t size, std::size_t& done) {
  return ReadBytes(data, size, done);
}

bool CMSCFile::OpenHandle(const CStringUTF8& name, unsigned flags) {
  name_.Empty();
  const FileCause cause = handle_.Open(name.View(), vela::text::OptionsOf(flags));
  if (cause == FileCause::kNone) name_ = name;
  return Succeeds(cause);
}

FileCause CMSCFile::Encode(std::string_view text, std::string& encoded) const {
  if (WriteEncoding() >= vela::text::kEncodings) return FileCause::kGeneric;
  encoded = vela::text::EncodeText(text, static_cast<TextEncoding>(WriteEncoding()));
  return FileCause::kNone;
}

std::byte* CMSCFile::BufferOf(Arguments& args, unsigned arg, std::size_t bytes) {
  if (bytes > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
    Fail(status::kBadArguments);
  }
  return static_cast<std::byte*>(args.Buffer(arg, static_cast<int>(bytes)));
}

std::string_view CMSCFile::DataOf(Arguments& args, CStringUTF8& text) {
  const std::size_t count = args.Unsigned(1);
  if (!args.IsText(0)) {
    if (count == 0) return {};
    return {reinterpret_cast<const char*>(BufferOf(args, 0, count)), count};
  }
  text = args.Text(0);
  if (count > text.View().size() + 1) Fail(status::kBadArguments);
  return {text.c_str(), count};
}

int CMSCFile::Open(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const CStringUTF8 name = args.Text(0);
    args.Return(OpenHandle(name, args.Unsigned(1)) ? 1 : 0);
  });
}

int CMSCFile::Close(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    name_.Empty();
    args.Return(Succeeds(CloseFile()) ? 1 : 0);
  });
}

std::int64_t CMSCFile::Position() {
  std::int64_t position = 0;
  return SeekTo(0, SeekFrom::kCurrent, position) == FileCause::kNone ? position : 0;
}

void CMSCFile::ReturnPosition(Arguments& args, FileCause cause, std::int64_t position) {
  if (cause == FileCause::kNone && position > std::numeric_limits<std::uint32_t>::max()) {
    cause = FileCause::kBadSeek;
  }
  const unsigned result = Succeeds(cause) ? static_cast<unsigned>(position) : 0;
  if (result <= static_cast<unsigned>(std::numeric_limits<int>::max())) {
    args.Return(static_cast<int>(result));
  } else {
    args.Return(result);
  }
}

void CMSCFile::ReturnReached(Arguments& args, std::int64_t offset, SeekFrom from) {
  std::int64_t position = 0;
  std::int64_t before = 0;
  FileCause cause = SeekTo(0, SeekFrom::kCurrent, before);
  if (cause == FileCause::kNone) cause = SeekTo(offset, from, position);
  if (cause == FileCause::kNone && position > std::numeric_limits<std::uint32_t>::max()) {
    cause = SeekTo(before, SeekFrom::kBegin, before);
  }
  ReturnPosition(args, cause, position);
}

int CMSCFile::Seek(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const int offset = args.Int(0);
    const int from = args.Int(1);
    if (from < 0 || from > static_cast<int>(SeekFrom::kEnd)) return args.Return(0);
    ReturnReached(args, offset, static_cast<SeekFrom>(from));
  });
}

int CMSCFile::SeekToBegin(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments&) {
    std::int64_t position = 0;
    Succeeds(SeekTo(0, SeekFrom::kBegin, position));
  });
}

int CMSCFile::SeekToEnd(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) { ReturnReached(args, 0, SeekFrom::kEnd); });
}

int CMSCFile::GetPosition(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { ReturnReached(args, 0, SeekFrom::kCurrent); });
}

int CMSCFile::GetLength(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    std::int64_t size = 0;
    const FileCause cause = GetSize(size);
    ReturnPosition(args, cause, size);
  });
}

int CMSCFile::Write(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    CStringUTF8 text;
    std::string encoded;
    std::string_view data = DataOf(args, text);
    FileCause cause = FileCause::kNone;
    if (WriteEncoding() != static_cast<unsigned>(TextEncoding::kUtf8)) {
      cause = Encode(data, encoded);
      data = encoded;
    }
    std::size_t done = 0;
    if (cause == FileCause::kNone) {
      cause = WriteBytes(data.data(), data.size(), done);
      if (cause == FileCause::kNone && done < data.size()) cause = FileCause::kDiskFull;
    }
    args.Return(Succeeds(cause) ? static_cast<unsigned>(done) : 0u);
  });
}

// The string becomes what was read. Room is made for no more than the file has, as far as that is
// known, and for as much again as long as there is more.
std::size_t CMSCFile::ReadIntoString(Arguments& args, std::size_t count) {
  const tagMSOOBJVECT target = args.Object(0);
  std::int64_t room = 0;
  if (GetSize(room) == FileCause::kNone) room -= Position();
  if (room <= 0) room = kUnknownRoom;
  count = std::min(count, static_cast<std::size_t>(CStringUTF8::kMostBytes));
  CStringUTF8 text;
  std::size_t done = 0;
  while (done < count) {
    const std::size_t most = std::min(count, done + std::max(done, static_cast<std::size_t>(room)));
    std::size_t moved = 0;
    char* const buffer = text.GetBuffer(static_cast<int>(most));
    const bool succeeds = Succeeds(ReadData(buffer + done, most - done, moved));
    done += moved;
    text.ReleaseBuffer(static_cast<int>(done));
    if (!succeeds || done < most) break;
    room = kUnknownRoom;
  }
  Check(target.object->SetStringValue(&target.indices, text));
  return done;
}

int CMSCFile::Read(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const std::size_t count = args.Unsigned(1);
    if (count == 0) return args.Return(0);
    std::size_t done = 0;
    if (args.TypeId(0) == kTypeString) {
      done = ReadIntoString(args, count);
    } else {
      std::byte* const data = BufferOf(args, 0, count);
      Succeeds(ReadData(data, count, done));
    }
    args.Return(static_cast<int>(done));
  });
}

int CMSCFile::GetLastError(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) { args.Return(last_error_); });
}

int CMSCFile::Rename(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const CStringUTF8 from = args.Text(0), to = args.Text(1);
    args.Return(Succeeds(vela::platform::RenameFile(from.View(), to.View())) ? 1 : 0);
  });
}

int CMSCFile::Remove(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const CStringUTF8 name = args.Text(0);
    args.Return(Succeeds(vela::platform::RemoveFile(name.View())) ? 1 : 0);
  });
}

int CMSCFile::Flush(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    args.Return(handle_.IsOpen() && Succeeds(FlushFile()) ? 1 : 0);
  });
}

int CMSCFile::GetHandle(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    args.Return(handle_.IsOpen() ? static_cast<int>(handle_.Native()) : 0);
  });
}

int CMSCFile::IsOpen(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) { args.Return(handle_.IsOpen() ? 1 : 0); });
}

int CMSCFile::SetWriteEncoding(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    write_encoding_ = args.Unsigned(0);
    file_encoding_.reset();
  });
}

int CMSCFile::WriteBOM(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    std::size_t done = 0;
    if (WriteEncoding() < vela::text::kEncodings && handle_.IsOpen() && Position() == 0) {
      const auto mark = vela::text::MarkOf(static_cast<TextEncoding>(WriteEncoding()));
      Succeeds(WriteBytes(mark.data(), mark.size(), done));
    }
    args.Return(static_cast<int>(done));
  });
}

int CMSCFile::DetectEncode(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    // One byte more tells whether that is all.
    std::string bytes(kDetectedBytes + 1, '\0');
    std::size_t done = 0;
    const std::int64_t position = Position();
    std::int64_t reached = 0;
    FileCause cause = SeekTo(0, SeekFrom::kBegin, reached);
    if (cause == FileCause::kNone) {
      cause = ReadBytes(bytes.data(), bytes.size(), done);
      Succeeds(SeekTo(position, SeekFrom::kBegin, reached));
    }
    Succeeds(cause);
    bytes.resize(std::min(done, kDetectedBytes));
    args.Return(done == 0
                    ? vela::text::kUnknownEncoding
                    : static_cast<int>(vela::text::DetectEncoding(bytes, done <= kDetectedBytes)));
  });
}

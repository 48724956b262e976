// Members of "string" that lend its memory, and those that print it.
#include <algorithm>
#include <cstring>
#include <string>

#include "text/string_member.h"
#include "text/string_object.h"

using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::text::FailingBetween;
using vela::text::RunMember;

namespace {

int BufferSize(Arguments& args) {
  const int size = args.Int(0);
  if (size < 0) Fail(status::kBadArguments);
  return size;
}

// What the output window expects: every line feed with its carriage return.
std::string WithCrLf(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  char previous = 0;
  for (const char ch : text) {
    if (ch == '\n' && previous != '\r') result += '\r';
    result += ch;
    previous = ch;
  }
  return result;
}

constexpr int kStatusBar = 1;
constexpr unsigned kNewLineFlag = 8;

unsigned OutputFlags(int destination) {
  switch (destination) {
    case 0:
      return 1;
    case 2:
      return 0x1010;
    case 4:
      return 0x20;
    case 5:
      return 0x400;
    default:
      return 0;
  }
}

}  // namespace

int CScriptVelaString::GetBufferSetLength(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    const int size = BufferSize(args);
    const int old_size = text.GetLength();
    char* buffer = text.GetBufferSetLength(size);
    if (size > old_size)
      std::memset(buffer + old_size, 0, static_cast<std::size_t>(size - old_size));
    args.ReturnMemory(buffer);
  });
}

int CScriptVelaString::GetBuffer(CTCall* call) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    args.ReturnMemory(text.GetBuffer(BufferSize(args)));
  });
}

int CScriptVelaString::ReleaseBuffer(CTCall* call) {
  return RunMember(call, FailingBetween(0, 1), [&](Arguments& args) {
    CStringUTF8& text = Acted(args);
    text.ReleaseBuffer(args.Count() == 1 ? args.Int(0) : -1);
  });
}

int CScriptVelaString::FreeExtra(CTCall* call) {
  return RunMember(call, NoArguments(), [&](Arguments& args) { Acted(args).FreeExtra(); });
}

int CScriptVelaString::LockBuffer(CTCall* call) {
  return RunMember(call, NoArguments(),
                   [&](Arguments& args) { args.ReturnMemory(Acted(args).LockBuffer()); });
}

int CScriptVelaString::UnlockBuffer(CTCall* call) {
  return RunMember(call, NoArguments(), [&](Arguments& args) { Acted(args).UnlockBuffer(); });
}

int CScriptVelaString::WriteText(CTCall* call, unsigned more_flags) {
  return RunMember(call, Exactly(1), [&](Arguments& args) {
    const std::string text = WithCrLf(Acted(args).View());
    const int destination = args.Int(0);
    if (destination == kStatusBar) {
      VELAObj::StatusMessage(text.c_str());
    } else {
      VELAObj::WriteStringEx(text.data(), text.size(), OutputFlags(destination) | more_flags);
    }
  });
}

int CScriptVelaString::Write(CTCall* call) { return WriteText(call, 0); }
int CScriptVelaString::WriteLine(CTCall* call) { return WriteText(call, kNewLineFlag); }

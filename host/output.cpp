#include "host/output.h"

#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

#include "frame/interface/type_base.h"
#include "host/never_destroyed.h"

namespace vela::host {
namespace {

struct OutputState {
  std::mutex mutex;
  std::shared_ptr<const OutputSink> sink;
  HWND window = nullptr;
  HostCallback callback = nullptr;
};

OutputState& State() {
  static NeverDestroyed<OutputState> state;
  return state.value;
}

struct Destination {
  std::shared_ptr<const OutputSink> sink;
  HWND window;
  HostCallback callback;
};

Destination CurrentDestination() {
  OutputState& state = State();
  const std::lock_guard lock(state.mutex);
  return {state.sink, state.window, state.callback};
}

unsigned short MessageOf(OutputTarget target) {
  switch (target) {
    case OutputTarget::kOutput:
      return kMessageOutput;
    case OutputTarget::kStatus:
      return kMessageStatus;
    default:
      return kMessageScript;
  }
}

// Line ends as "\n", whatever mixture of them the text has.
std::string NormaliseLineEnds(std::string_view text) {
  std::string result;
  result.reserve(text.size() + 1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
    result += text[i];
  }
  return result;
}

bool OfferToCallback(const Destination& to, OutputTarget target, std::string& text,
                     unsigned flags) {
  if (!to.callback) return false;
  std::string flags_text = std::to_string(flags);
  return to.callback(to.window, MessageOf(target), text.data(), flags_text.data()) != 0;
}

void WriteToStream(OutputTarget target, std::string_view text) {
  std::FILE* const stream = target == OutputTarget::kOutput ? stdout : stderr;
  std::fwrite(text.data(), 1, text.size(), stream);
}

void Emit(OutputTarget target, std::string text, unsigned flags) {
  const Destination to = CurrentDestination();
  if (OfferToCallback(to, target, text, flags)) return;
  if (to.sink) {
    (*to.sink)(target, text, flags);
  } else {
    WriteToStream(target, text);
  }
}

void EmitMessage(OutputTarget target, const char* text) {
  std::string line = NormaliseLineEnds(text ? text : "");
  if (!line.ends_with('\n')) line += '\n';
  Emit(target, std::move(line), kOutputNewLine);
}

}  // namespace

void SetOutputSink(OutputSink sink) {
  auto shared = sink ? std::make_shared<const OutputSink>(std::move(sink)) : nullptr;
  OutputState& state = State();
  const std::lock_guard lock(state.mutex);
  state.sink.swap(shared);
}

}  // namespace vela::host

using vela::host::OutputTarget;

void VELAObj::SetCallback(HWND window, HostCallback callback) {
  auto& state = vela::host::State();
  const std::lock_guard lock(state.mutex);
  state.window = window;
  state.callback = callback;
}

void VELAObj::WriteString(const char* text, std::uint64_t length) {
  WriteStringEx(text, length, 0);
}

void VELAObj::WriteStringEx(const char* text, std::uint64_t length, unsigned flags) {
  const std::string_view view =
      text ? std::string_view(text, static_cast<std::size_t>(length)) : std::string_view();
  std::string line = vela::host::NormaliseLineEnds(view);
  if (flags & vela::host::kOutputNewLine) line += '\n';
  vela::host::Emit(OutputTarget::kOutput, std::move(line), flags);
}

void VELAObj::StatusMessage(const char* text) {
  vela::host::EmitMessage(OutputTarget::kStatus, text);
}

void VELAObj::ScriptMessage(const char* text) {
  vela::host::EmitMessage(OutputTarget::kScriptMessage, text);
}

#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <vector>

#include "host/call_frame.h"
#include "host/library.h"
#include "host/object_ref.h"
#include "tesselc/run/node.h"
#include "tesselc/run/output.h"
#include "tesselc/run/script_error.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

// What a running script needs: the stack of its frames, the library that makes its objects, and
// objects and call frames kept for reuse. One script at a time, on one thread.
class Run {
 public:
  Run(const vela::host::Library& library, Output& output);
  ~Run();
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  const vela::host::Library& library() const { return library_; }
  Output& output() { return output_; }

  // A new object of a type word, of the library or the host. Throws a ScriptError at `where` when
  // neither makes one.
  vela::host::ObjectRef Create(unsigned type_word, unsigned count, const std::string& type_name,
                               const SourceRange& where);

  // The object whose members are the host's functions.
  CScriptVelaObject* HostFunctions();

  // Frames of script functions.
  // Takes `size` bytes for a frame; they hold garbage. Throws a ScriptError when the frames, or the
  // native calls under way, have used up the stack.
  std::byte* PushFrame(std::uint32_t size, const SourceRange& where) {
    if (size > static_cast<std::size_t>(stack_end_ - top_) || NativeStackIsLow()) {
      ThrowTooDeep(where);
    }
    return std::exchange(top_, top_ + size);
  }
  void PopFrame(std::byte* frame) { top_ = frame; }

  // Call frames for members, one for each call under way.
  vela::host::CallFrame& BorrowCallFrame();
  void ReturnCallFrame();

  // Scalar objects without storage of their own, to be bound to a value for one call.
  vela::host::ObjectRef BorrowProxy(TypeName scalar, const SourceRange& where);
  void ReturnProxy(TypeName scalar, vela::host::ObjectRef proxy);

 private:
  bool NativeStackIsLow() const {
    return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)) < native_limit_;
  }
  [[noreturn]] static void ThrowTooDeep(const SourceRange& where);

  const vela::host::Library& library_;
  Output& output_;
  std::unique_ptr<std::byte[]> stack_;
  std::byte* top_;
  std::byte* stack_end_;
  std::uintptr_t native_limit_;
  std::deque<vela::host::CallFrame> call_frames_;
  std::size_t call_depth_ = 0;
  vela::host::ObjectRef host_functions_;
  std::array<std::vector<vela::host::ObjectRef>, static_cast<std::size_t>(TypeName::kAny) + 1>
      proxies_;
};

// Returns a frame's memory at the end of a call, however it ends.
class FrameLease {
 public:
  FrameLease(Run& run, std::uint32_t size, const SourceRange& where)
      : run_(run), base_(run.PushFrame(size, where)) {}
  ~FrameLease() { run_.PopFrame(base_); }
  FrameLease(const FrameLease&) = delete;
  FrameLease& operator=(const FrameLease&) = delete;
  std::byte* base() const { return base_; }

 private:
  Run& run_;
  std::byte* base_;
};

class CallFrameLease {
 public:
  explicit CallFrameLease(Run& run) : run_(run), frame_(run.BorrowCallFrame()) {}
  ~CallFrameLease() { run_.ReturnCallFrame(); }
  CallFrameLease(const CallFrameLease&) = delete;
  CallFrameLease& operator=(const CallFrameLease&) = delete;
  vela::host::CallFrame& operator*() const { return frame_; }
  vela::host::CallFrame* operator->() const { return &frame_; }

 private:
  Run& run_;
  vela::host::CallFrame& frame_;
};

}  // namespace tesselc

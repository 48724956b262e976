#include "tesselc/run/run.h"

#include "frame/interface/status.h"
#include "host/host_objects.h"
#include "tesselc/run/native_stack.h"
#include "tesselc/run/number_types.h"

namespace tesselc {
namespace {

// The native stack runs out first unless functions have hundreds of variables.
constexpr std::size_t kStackBytes = std::size_t{8} << 20;

}  // namespace

Run::Run(const vela::host::Library& library, Output& output)
    : library_(library),
      output_(output),
      stack_(new std::byte[kStackBytes]),
      top_(stack_.get()),
      stack_end_(top_ + kStackBytes),
      native_limit_(NativeStackLimit()) {}

Run::~Run() = default;

vela::host::ObjectRef Run::Create(unsigned type_word, unsigned count, const std::string& type_name,
                                  const SourceRange& where) {
  vela::host::ObjectRef object(library_.Create(type_word, count));
  if (!object) object = vela::host::ObjectRef(vela::host::CreateHostObject(type_word));
  if (!object) {
    // The library answers alike where it has no such type and where it has no memory for so many.
    const vela::host::ObjectRef one(count > 0 ? library_.Create(type_word, 0) : nullptr);
    throw ScriptError(
        where, status::kFailed,
        one ? "out of memory" : "objects of type " + type_name + " are not available");
  }
  return object;
}

CScriptVelaObject* Run::HostFunctions() {
  if (!host_functions_) {
    host_functions_ = vela::host::ObjectRef(vela::host::CreateHostFunctions());
  }
  return host_functions_.Get();
}

void Run::ThrowTooDeep(const SourceRange& where) {
  throw ScriptError(where, status::kFailed, "recursion too deep");
}

vela::host::CallFrame& Run::BorrowCallFrame() {
  if (call_depth_ == call_frames_.size()) call_frames_.emplace_back();
  return call_frames_[call_depth_++];
}

void Run::ReturnCallFrame() { call_frames_[--call_depth_].Reset(); }

vela::host::ObjectRef Run::BorrowProxy(TypeName scalar, const SourceRange& where) {
  auto& idle = proxies_[static_cast<std::size_t>(scalar)];
  if (idle.empty()) return Create(ScalarTypeId(scalar), 1, Spelling(scalar), where);
  vela::host::ObjectRef proxy = std::move(idle.back());
  idle.pop_back();
  return proxy;
}

void Run::ReturnProxy(TypeName scalar, vela::host::ObjectRef proxy) {
  proxies_[static_cast<std::size_t>(scalar)].push_back(std::move(proxy));
}

}  // namespace tesselc

// The members that are timed, each with what it needs around the call.
#pragma once

#include <string>
#include <vector>

#include "host/call_frame.h"
#include "host/library.h"
#include "host/object_ref.h"
#include "prepared.h"

namespace vela::bench {

// A member found once, with a frame that is filled once: what a host does at a call site.
class CallSite {
 public:
  CallSite(host::ObjectRef object, const char* member);
  host::CallFrame& Frame() { return frame_; }
  // Adds an argument that the call site keeps alive.
  void AddObject(host::ObjectRef object);
  // Throws std::runtime_error when the status is not 0: a refused call is no timing.
  void operator()();

 private:
  host::ObjectRef object_;
  std::vector<host::ObjectRef> arguments_;
  std::string member_;
  CTypeBase* owner_ = nullptr;
  const CClassMember* row_ = nullptr;
  host::CallFrame frame_;
};

// The members of vectors. The library must outlive the cases.
Cases NumericCases(const host::Library& library);

}  // namespace vela::bench

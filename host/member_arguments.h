// What the members of the host's own objects are written with: the arguments of one call, and the
// one place where a failure becomes a status.
#pragma once

#include <cstring>
#include <exception>

#include "frame/interface/call.h"
#include "frame/interface/status.h"

namespace vela::host {

// Ends a member with a status. Thrown only inside the body of RunMember.
struct MemberFailure {
  int code;
};
inline void Check(int code) {
  if (code != status::kOk) throw MemberFailure{code};
}

class MemberArguments {
 public:
  explicit MemberArguments(CTCall& call) : call_(call) {}

  int Int(unsigned arg) {
    int value = 0;
    Check(call_.GetInt(arg, value));
    return value;
  }
  double Double(unsigned arg) {
    double value = 0;
    Check(call_.GetDouble(arg, value));
    return value;
  }
  CStringUTF8 Text(unsigned arg) {
    CStringUTF8 text;
    Check(call_.GetString(arg, text));
    return text;
  }
  // Status 3 for NULL and for a plain value.
  tagMSOOBJVECT Object(unsigned arg) {
    tagMSOOBJVECT object;
    Check(call_.GetArgumentObject(static_cast<int>(arg), object));
    if (object.object == nullptr) throw MemberFailure{status::kBadArguments};
    return object;
  }
  // The raw bytes of an argument as a value.
  template <class T>
  T Raw(unsigned arg) {
    void* bytes = nullptr;
    Check(call_.GetBuffer(arg, &bytes, sizeof(T)));
    T value;
    std::memcpy(&value, bytes, sizeof value);
    call_.ReleaseBuffer(arg);
    return value;
  }
  void Return(auto value) { Check(call_.SetReturnInt(value)); }

 private:
  CTCall& call_;
};

// Runs a member that takes so many arguments: status 3 for another number and without a frame.
template <class Body>
int RunMember(CTCall* call, unsigned count, Body&& body) {
  if (call == nullptr) return status::kBadArguments;
  if (call->IsReady() == 0) return status::kFailed;
  if (call->GetNumOfArguments() != count) return status::kBadArguments;
  try {
    MemberArguments args(*call);
    body(args);
    return status::kOk;
  } catch (const MemberFailure& failure) {
    return failure.code;
  } catch (const std::exception&) {
    return status::kFailed;
  }
}

// A row of a member table of the host's.
template <class Object>
CClassMember HostMember(const char* name, int (Object::*handler)(CTCall*)) {
  return {name, static_cast<MemberHandler>(handler)};
}

}  // namespace vela::host

// What every member handler is written with: the argument check, typed arguments, results, and the
// one place where an error becomes a status.
//
//   int TCcomplex::GetAmplitude(CTCall* call) {
//     return member::Run(call, member::NoArguments(), [&](member::Arguments& args) {
//       args.Return(Element(args).GetAmplitude());
//     });
//   }
#pragma once

#include <new>
#include <stdexcept>
#include <type_traits>

#include "frame/interface/call.h"
#include "frame/interface/script_object.h"
#include "frame/interface/status.h"

namespace vela::member {

// Ends a handler with a status. Thrown only inside the body of Run.
struct Failure {
  int code;
};
[[noreturn]] void Fail(int code);
inline void Check(int code) {
  if (code != status::kOk) [[unlikely]]
    Fail(code);
}

// How many arguments a member takes, and the status for any other number or for no frame at all.
struct Arity {
  unsigned least;
  unsigned most;
  int wrong = status::kBadArguments;
};
constexpr Arity Exactly(unsigned n) { return {n, n}; }
constexpr Arity Between(unsigned least, unsigned most) { return {least, most}; }
constexpr Arity AtLeast(unsigned n) { return {n, ~0u}; }
constexpr Arity NoArguments(int wrong = status::kBadArguments) { return {0, 0, wrong}; }

// The arguments of one call. Every getter ends the handler with the frame's own status when the
// argument cannot be read as asked.
class Arguments {
 public:
  explicit Arguments(CTCall& call) : call_(call) {}

  CTCall& Call() { return call_; }
  unsigned Count() const { return call_.GetNumOfArguments(); }
  const MSOINDICES& Indices() const { return call_.GetIndeces(); }

  unsigned TypeId(unsigned arg) const { return call_.GetTypeID(arg); }
  // A character, or any integral value that stands for one.
  bool IsCharacter(unsigned arg) const;
  bool IsText(unsigned arg) const;
  bool IsNull(unsigned arg) const { return TypeId(arg) == kTypeNone; }

  int Int(unsigned arg) {
    int value = 0;
    Check(call_.GetInt(arg, value));
    return value;
  }
  unsigned Unsigned(unsigned arg) {
    unsigned value = 0;
    Check(call_.GetUINT(arg, value));
    return value;
  }
  DWORD Dword(unsigned arg) {
    DWORD value = 0;
    Check(call_.GetDWORD(arg, value));
    return value;
  }
  double Double(unsigned arg);
  OneTCcomplex Complex(unsigned arg);
  CStringUTF8 Text(unsigned arg);
  // A handle of the system, as wide as a pointer: an integer, or what an object holds as raw data.
  std::uint64_t Handle(unsigned arg);
  char Character(unsigned arg) { return static_cast<char>(Int(arg)); }

  // The object of an argument, resolved through references; its object is null for NULL. The
  // reference form insists on an argument that can be written back to.
  tagMSOOBJVECT Object(unsigned arg);
  tagMSOOBJVECT Reference(unsigned arg) {
    tagMSOOBJVECT object;
    Check(call_.GetArgumentReferenceTarget(static_cast<int>(arg), object, 0));
    return object;
  }

  // The bytes of an argument, at least bytes of them; released with this object.
  void* Buffer(unsigned arg, int bytes = 0);
  unsigned BufferBytes(unsigned arg) const { return call_.GetBufferBytes(arg); }

  void Return(std::integral auto value) { Check(call_.SetReturnInt(value)); }
  void Return(double value) { Check(call_.SetReturnDouble(value)); }
  void Return(const CStringUTF8& text) { Check(call_.SetReturnString(text)); }
  void Return(const OneTCcomplex& value) { Check(call_.SetReturnComplex(value)); }
  void ReturnMemory(void* memory) { Check(call_.SetReturnMemoryPtr(memory)); }

  void Set(unsigned arg, int value) { Check(call_.SetInt(arg, value)); }
  void Set(unsigned arg, double value) { Check(call_.SetDouble(arg, value)); }
  void Set(unsigned arg, const char* text) { Check(call_.SetString(arg, text)); }
  void Set(unsigned arg, const OneTCcomplex& value) {
    Check(call_.SetComplex(static_cast<int>(arg), value));
  }

  ~Arguments() {
    if (locked_ != 0) [[unlikely]]
      ReleaseBuffers();
  }
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

 private:
  void ReleaseBuffers();

  CTCall& call_;
  unsigned locked_ = 0;  // bit k: argument k's buffer is held
};

// The status for the exception in flight; called from a catch block.
int StatusOfException() noexcept;

// Runs a handler's body. Without a frame, or with a number of arguments that the arity does not
// take, the status is arity.wrong and the body does not run; a frame that is not ready gives 1. The
// body returns nothing, or a status.
template <class Body>
int Run(CTCall* call, const Arity& arity, Body&& body) noexcept {
  if (call == nullptr) return arity.wrong;
  if (call->IsReady() == 0) return status::kFailed;
  const unsigned count = call->GetNumOfArguments();
  if (count < arity.least || count > arity.most) return arity.wrong;
  try {
    Arguments args(*call);
    if constexpr (std::is_void_v<std::invoke_result_t<Body, Arguments&>>) {
      body(args);
      return status::kOk;
    } else {
      return body(args);
    }
  } catch (...) {
    return StatusOfException();
  }
}

// A property setter: exactly one argument; without a frame it does nothing and succeeds.
template <class Body>
int RunSetter(CTCall* call, Body&& body) noexcept {
  if (call == nullptr) return status::kOk;
  return Run(call, Exactly(1), std::forward<Body>(body));
}

// A property getter: no arguments.
template <class Body>
int RunGetter(CTCall* call, Body&& body) noexcept {
  return Run(call, NoArguments(status::kFailed), std::forward<Body>(body));
}

}  // namespace vela::member

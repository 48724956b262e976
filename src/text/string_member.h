// What every member of "string" is run with.
#pragma once

#include <utility>

#include "frame/member/arguments.h"

namespace vela::text {

// member::Run, and the two things strings add to it: a wrong number of arguments leaves the result
// 0 where the member takes an exact number of them, and the frame is told that the result is set.
template <class Body>
int RunMember(CTCall* call, const member::Arity& arity, Body&& body) {
  const int code = member::Run(call, arity, std::forward<Body>(body));
  if (code == status::kOk) {
    call->Notify(0);
  } else if (call != nullptr && code == arity.wrong && arity.least == arity.most &&
             arity.least > 0 && call->GetNumOfArguments() != arity.least) {
    call->SetReturnInt(0);
  }
  return code;
}

// The arity of members whose status for a wrong number of arguments is 1.
constexpr member::Arity FailingBetween(unsigned least, unsigned most) {
  return {least, most, status::kFailed};
}

inline bool CountsCharacters() { return VELAObj::IsCharIndexMode() != 0; }

// An argument that must be a char or a text; fails with 1.
inline void RequireText(const member::Arguments& args, unsigned arg) {
  if (!args.IsText(arg)) member::Fail(status::kFailed);
}
inline void RequireCharacter(const member::Arguments& args, unsigned arg) {
  if (!args.IsCharacter(arg)) member::Fail(status::kFailed);
}

}  // namespace vela::text

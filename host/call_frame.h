// The call frame as the side that makes a call sees it: fill in the arguments, call the member,
// read its result.
#pragma once

#include <cstdint>

#include "frame/interface/call.h"

namespace vela::host {

// One frame serves any number of calls, one after the other; Reset keeps its memory. Up to eight
// arguments and a numeric result allocate nothing. Texts and objects are borrowed and must outlive
// the call. Not for use by two threads at once.
class VELAHOST_API CallFrame final : public CTCall {
 public:
  using CTCall::ResultKind;

  CallFrame();
  ~CallFrame() override;

  // Forgets the arguments, the result, the result object and the indices.
  void Reset();

  // Append an argument. Only AddObject can make one that the member writes back to.
  void AddNull();
  void AddInt(int value);
  void AddInt64(std::int64_t value);
  void AddUnsigned64(std::uint64_t value);
  void AddDouble(double value);
  void AddChar(char value);
  void AddComplex(const OneTCcomplex& value);
  // A string literal, NUL-terminated UTF-8; null adds a NULL argument. A member that asks for the
  // bytes gets a copy of them, so that it can write without changing the literal.
  void AddText(const char* text);
  // An object, or the part of it that indices address. A reference or pointer passes its target, a
  // null pointer and a null object NULL. One whose target is gone stays in the frame, and reading
  // it is status 2.
  void AddObject(CScriptVelaObject* object, const MSOINDICES& indices = {},
                 bool by_reference = true);

  // What GetReturnObject gives the member.
  void SetReturnObject(CScriptVelaObject* object);

  // The result as the member set it; kNone when it set none.
  ResultKind Kind() const { return result_kind_; }
  // The result as a number: an int for kInt, the bits of an unsigned 64-bit int for kUnsigned, a
  // double truncated and saturated; 0 for any other kind.
  std::int64_t ResultInt() const {
    return result_kind_ == ResultKind::kInt ? result_integer_ : OtherResultInt();
  }
  // Likewise; the real part of kComplex.
  double ResultDouble() const;
  OneTCcomplex ResultComplex() const;
  // The text of kText, otherwise empty; valid until the next result or Reset.
  const CStringUTF8& ResultText() const { return result_text_; }
  // The address of kMemory, otherwise null.
  void* ResultMemory() const;

 private:
  std::int64_t OtherResultInt() const;
  Argument& Append(ArgumentKind kind, unsigned type_id);
};

}  // namespace vela::host

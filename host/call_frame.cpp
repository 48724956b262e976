#include "host/call_frame.h"

#include "frame/interface/script_object.h"
#include "host/saturate.h"

namespace vela::host {

CallFrame::CallFrame() = default;
CallFrame::~CallFrame() = default;

void CallFrame::Reset() { Clear(); }

CTCall::Argument& CallFrame::Append(ArgumentKind kind, unsigned type_id) {
  Argument& argument = AddArgument();
  argument.kind = kind;
  argument.type_id = type_id;
  return argument;
}

void CallFrame::AddNull() { AddArgument(); }
void CallFrame::AddInt(int value) { Append(ArgumentKind::kInt, kTypeInt).integer = value; }
void CallFrame::AddInt64(std::int64_t value) {
  Append(ArgumentKind::kInt64, kTypeInt64).integer = value;
}
void CallFrame::AddUnsigned64(std::uint64_t value) {
  Append(ArgumentKind::kInt64, kTypeUnsignedInt64).integer = static_cast<std::int64_t>(value);
}
void CallFrame::AddDouble(double value) {
  Append(ArgumentKind::kDouble, kTypeDouble).number = value;
}
void CallFrame::AddChar(char value) { Append(ArgumentKind::kInt, kTypeChar).integer = value; }
void CallFrame::AddComplex(const OneTCcomplex& value) {
  Append(ArgumentKind::kComplex, kTypeComplex).number = value;
}

void CallFrame::AddText(const char* text) {
  if (!text) return AddNull();
  Append(ArgumentKind::kText, kTypeStringLiteral).text = text;
}

void CallFrame::AddObject(CScriptVelaObject* object, const MSOINDICES& indices, bool by_reference) {
  if (!object) return AddNull();
  MSOINDICES at = indices;
  const unsigned own_type = object->GetTypeID();
  if (own_type == kTypeReference || own_type == kTypePointer) {
    if (CScriptVelaObject* const target = object->GetActualObjectEx(&at)) {
      object = target;
    } else if (object->IsNULLPtr()) {
      return AddNull();
    }
  }
  const bool is_element = at.ElementCount() != 0;
  const unsigned type = is_element ? object->GetTypeIDCheckIndex(&at) : object->GetTypeID();
  Argument& argument = Append(ArgumentKind::kObject, type);
  argument.object = object;
  argument.indices = at;
  argument.by_reference = by_reference;
}

void CallFrame::SetReturnObject(CScriptVelaObject* object) { return_object_ = object; }

std::int64_t CallFrame::OtherResultInt() const {
  switch (result_kind_) {
    case ResultKind::kInt:
    case ResultKind::kUnsigned:
      return result_integer_;
    case ResultKind::kDouble:
      return Saturate<std::int64_t>(result_number_.m_re);
    default:
      return 0;
  }
}

double CallFrame::ResultDouble() const {
  switch (result_kind_) {
    case ResultKind::kInt:
      return static_cast<double>(result_integer_);
    case ResultKind::kUnsigned:
      return static_cast<double>(static_cast<std::uint64_t>(result_integer_));
    case ResultKind::kDouble:
    case ResultKind::kComplex:
      return result_number_.m_re;
    default:
      return 0;
  }
}

OneTCcomplex CallFrame::ResultComplex() const {
  return result_kind_ == ResultKind::kComplex ? result_number_ : OneTCcomplex(ResultDouble());
}

void* CallFrame::ResultMemory() const {
  return result_kind_ == ResultKind::kMemory ? result_memory_ : nullptr;
}

}  // namespace vela::host

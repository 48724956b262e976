// The frame itself: its arguments, indices and result. Conversions are in call_numbers.cpp and
// call_texts.cpp, objects and buffers in call_objects.cpp, write-back in call_write_back.cpp.
#include "frame/interface/call.h"

#include <new>

#include "frame/interface/status.h"

CTCall::CTCall() = default;
CTCall::~CTCall() = default;

int CTCall::IsReady() { return 1; }
void CTCall::Notify(int) {}

CTCall::Argument& CTCall::AddAnotherArgument() {
  Argument& argument = more_arguments_.emplace_back();
  ++count_;
  return argument;
}

void CTCall::Clear() {
  count_ = 0;
  more_arguments_.clear();
  text_copies_.clear();
  result_kind_ = ResultKind::kNone;
  return_object_ = nullptr;
  indices_ = {};
}

void CTCall::SetIndeces(std::uint32_t kind, unsigned index, unsigned element, unsigned column) {
  indices_ = {static_cast<std::int32_t>(kind), static_cast<std::int32_t>(index),
              static_cast<std::int32_t>(element), static_cast<std::int32_t>(column)};
}

int CTCall::SetReturnInt(unsigned value) {
  return SetReturnInt(static_cast<unsigned long long>(value));
}

int CTCall::SetReturnInt(unsigned long value) {
  return SetReturnInt(static_cast<unsigned long long>(value));
}

int CTCall::SetReturnInt(unsigned long long value) {
  result_kind_ = ResultKind::kUnsigned;
  result_integer_ = static_cast<std::int64_t>(value);
  return status::kOk;
}

int CTCall::SetReturnDouble(double value) {
  result_kind_ = ResultKind::kDouble;
  result_number_ = value;
  return status::kOk;
}

int CTCall::SetReturnString(const char* text) {
  result_text_ = text;
  result_kind_ = ResultKind::kText;
  return status::kOk;
}

int CTCall::SetReturnString(const CStringUTF8& text) {
  result_text_ = text;
  result_kind_ = ResultKind::kText;
  return status::kOk;
}

int CTCall::SetReturnComplex(const OneTCcomplex& value) {
  result_kind_ = ResultKind::kComplex;
  result_number_ = value;
  return status::kOk;
}

int CTCall::SetReturnMemoryPtr(void* memory) {
  result_kind_ = ResultKind::kMemory;
  result_memory_ = memory;
  return status::kOk;
}

CScriptVelaObject* CTCall::GetReturnObject(int index) {
  return index == 0 ? return_object_ : nullptr;
}

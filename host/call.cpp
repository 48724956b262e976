// The frame itself: its arguments as objects and memory, indices and result.
#include "frame/interface/call.h"

#include <cstring>
#include <limits>
#include <utility>

#include "frame/interface/script_object.h"
#include "host/argument_status.h"

using vela::host::StatusOfRead;

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

int CTCall::GetArgumentObject(int arg, tagMSOOBJVECT& out) {
  const Argument* const argument = arg < 0 ? nullptr : Find(static_cast<unsigned>(arg));
  if (!argument) return status::kBadArguments;
  if (argument->kind == ArgumentKind::kNull) {
    out.Reset();
    return status::kOk;
  }
  if (argument->kind != ArgumentKind::kObject) return status::kBadArguments;
  if (IsUnresolved(argument->type_id)) return status::kUnresolved;
  SetObject(*argument, out);
  return status::kOk;
}

int CTCall::ReadReferenceTarget(int arg, tagMSOOBJVECT& out, unsigned flags) {
  const Argument* const argument = Find(static_cast<unsigned>(arg));
  const bool is_value = argument != nullptr && argument->kind == ArgumentKind::kObject &&
                        !IsUnresolved(argument->type_id) && !argument->by_reference;
  return is_value && flags == 0 ? status::kBadArguments : GetArgumentObject(arg, out);
}

// A copy that the member may write to, kept until the frame is reset.
void* CTCall::LendText(const char* text, unsigned size) {
  auto& copy = text_copies_.emplace_back(std::make_unique<char[]>(size));
  std::memcpy(copy.get(), text, size);
  return copy.get();
}

int CTCall::GetBuffer(unsigned arg, void** out, int bytes) {
  Argument* const argument = Find(arg);
  if (!argument || !out || bytes < 0) return status::kBadArguments;
  const auto least = static_cast<unsigned>(bytes);
  if (argument->kind == ArgumentKind::kText) {
    const std::size_t size = std::strlen(argument->text) + 1;
    if (size < least || size > std::numeric_limits<unsigned>::max()) return status::kBadArguments;
    argument->lent_bytes = static_cast<unsigned>(size);
    *out = argument->lent = LendText(argument->text, argument->lent_bytes);
    return status::kOk;
  }
  if (argument->kind != ArgumentKind::kObject) return status::kBadArguments;
  if (IsUnresolved(argument->type_id)) return status::kUnresolved;

  // A lent buffer is at least as long as the size was before: asking first means that an argument
  // which is too short is never locked.
  CScriptVelaObject& object = *argument->object;
  const unsigned size = object.GetBufferSize(&argument->indices);
  if (size < least) return status::kBadArguments;
  void* buffer = nullptr;
  if (const int code = object.GetBufferMSO(&argument->indices, &buffer)) return StatusOfRead(code);
  if (!buffer) return status::kBadArguments;
  argument->lent_bytes = size;
  *out = argument->lent = buffer;
  return status::kOk;
}

int CTCall::ReleaseBuffer(unsigned arg) {
  Argument* const argument = Find(arg);
  if (!argument) return status::kBadArguments;
  void* const buffer = std::exchange(argument->lent, nullptr);
  argument->lent_bytes = 0;
  if (!buffer || argument->kind != ArgumentKind::kObject) return status::kOk;
  return argument->object->ReleaseBufferMSO(&argument->indices, buffer);
}

unsigned CTCall::GetBufferBytes(unsigned arg) const {
  const Argument* const argument = Find(arg);
  return argument ? argument->lent_bytes : 0;
}

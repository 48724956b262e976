// The arguments of a call frame as objects and memory.
#include <cstring>
#include <limits>
#include <utility>

#include "frame/interface/call.h"
#include "frame/interface/script_object.h"
#include "host/call_object.h"

using vela::host::StatusOfRead;

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

// Marshalling the arguments of a call frame for an external function.
#include "frame/interface/call.h"
#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "host/call_object.h"

using vela::host::StatusOfRead;

namespace {

template <class Argument>
int AddTo(CTCExternalCallBuilder& builder, const Argument& argument, unsigned flags) {
  using Kind = decltype(argument.kind);
  const int width = static_cast<int>(PLTTypeToSizeOf(argument.type_id));
  switch (argument.kind) {
    case Kind::kNull:
      builder.AddNext(static_cast<void*>(nullptr));
      break;
    case Kind::kInt:
      builder.AddNext(argument.integer, width);
      break;
    case Kind::kInt64:
      if (argument.type_id == kTypeUnsignedInt64) {
        builder.AddNext(static_cast<std::uint64_t>(argument.integer), width);
      } else {
        builder.AddNext(argument.integer, width);
      }
      break;
    case Kind::kDouble:
      builder.AddNext(argument.number.m_re, width);
      break;
    case Kind::kText:
      builder.AddNext(CStringUTF8(argument.text));
      break;
    case Kind::kComplex:
      return status::kBadArguments;
    case Kind::kObject:
      if (argument.type_id == kTypeReference || argument.type_id == kTypePointer) {
        return status::kUnresolved;
      }
      return StatusOfRead(
          argument.object->BeginGetValueForExternalCall(builder, &argument.indices, flags));
  }
  return status::kOk;
}

}  // namespace

int CTCall::BeginGetValuesForExternalCall(CTCExternalCallBuilder& builder, unsigned first,
                                          unsigned count, unsigned flags) {
  if (first > count_ || count > count_ - first) return status::kBadArguments;
  for (unsigned i = 0; i < count; ++i) {
    if (const int code = AddTo(builder, *Find(first + i), flags)) {
      EndGetValuesForExternalCall(builder, first, i, flags);
      return code;
    }
  }
  return status::kOk;
}

int CTCall::EndGetValuesForExternalCall(CTCExternalCallBuilder& builder, unsigned first,
                                        unsigned count, unsigned flags) {
  if (first > count_ || count > count_ - first) return status::kBadArguments;
  int result = status::kOk;
  for (unsigned i = 0; i < count; ++i) {
    const Argument& argument = *Find(first + i);
    if (argument.kind != ArgumentKind::kObject) continue;
    const int code = argument.object->EndGetValueForExternalCall(builder, &argument.indices, flags);
    if (result == status::kOk) result = StatusOfRead(code);
  }
  return result;
}

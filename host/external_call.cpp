// Marshalling for external functions: by default numbers and text by value, nothing else.
#include "frame/interface/call.h"
#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "host/argument_status.h"
#include "host/type_description.h"

using vela::host::StatusOfRead;

namespace {

template <class T>
int AddNumber(CTCExternalCallBuilder& builder, CScriptVelaObject& object, const MSOINDICES* at,
              unsigned type) {
  T value{};
  if (const int code = object.GetNumericValue(at, value)) return code;
  builder.AddNext(value, static_cast<int>(PLTTypeToSizeOf(type)));
  return status::kOk;
}

int AddText(CTCExternalCallBuilder& builder, CScriptVelaObject& object, const MSOINDICES* at) {
  CStringUTF8 text;
  if (const int code = object.GetString(at, text)) return code;
  builder.AddNext(text);
  return status::kOk;
}

int AddTo(CTCExternalCallBuilder& builder, const CTCall::Argument& argument, unsigned flags) {
  using enum CTCall::ArgumentKind;
  const int width = static_cast<int>(PLTTypeToSizeOf(argument.type_id));
  switch (argument.kind) {
    case kNull:
      builder.AddNext(static_cast<void*>(nullptr));
      break;
    case kInt:
      builder.AddNext(argument.integer, width);
      break;
    case kInt64:
      if (argument.type_id == kTypeUnsignedInt64) {
        builder.AddNext(static_cast<std::uint64_t>(argument.integer), width);
      } else {
        builder.AddNext(argument.integer, width);
      }
      break;
    case kDouble:
      builder.AddNext(argument.number.m_re, width);
      break;
    case kText:
      builder.AddNext(CStringUTF8(argument.text));
      break;
    case kComplex:
      return status::kBadArguments;
    case kObject:
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

int CScriptVelaObject::BeginGetValueForExternalCall(CTCExternalCallBuilder& builder,
                                                    const MSOINDICES* at, unsigned) {
  const unsigned type_word = GetTypeIDCheckIndex(at);
  if (vela::host::IsContainerWord(type_word)) return status::kUnsupported;
  const unsigned type = type_word & kTypeIdMask;
  if (type == kTypeString) return AddText(builder, *this, at);
  if (type == kTypeFloat || type == kTypeDouble) {
    return AddNumber<double>(builder, *this, at, type);
  }
  if (type == kTypeUnsignedInt64) return AddNumber<std::uint64_t>(builder, *this, at, type);
  if (vela::host::IsIntegralType(type)) return AddNumber<std::int64_t>(builder, *this, at, type);
  return status::kUnsupported;
}

int CScriptVelaObject::EndGetValueForExternalCall(CTCExternalCallBuilder&, const MSOINDICES*,
                                                  unsigned) {
  return status::kOk;
}
int CScriptVelaObject::GetValueForPtrAsExternalFuncArg(const MSOINDICES*, void**) {
  return status::kUnsupported;
}
int CScriptVelaObject::IsPassMSOToExternalFuncCallAsPtr() { return 0; }
int CScriptVelaObject::ReturnValueAfterExternalFunctionCallCleanup() { return status::kOk; }

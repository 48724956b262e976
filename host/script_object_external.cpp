// Arguments for external functions: numbers and text by value, nothing else by default.
#include "frame/interface/call.h"
#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "host/type_description.h"

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

}  // namespace

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

#include "frame/interface/tessel_object.h"

#include <algorithm>
#include <cstring>

namespace {

bool IsContinuationByte(char ch) { return (static_cast<unsigned char>(ch) & 0xC0) == 0x80; }

// How much of text fits in size bytes without cutting a character.
int FittingLength(const CStringUTF8& text, int size) {
  int length = std::min(text.GetLength(), size);
  if (length == text.GetLength()) return length;
  while (length > 0 && IsContinuationByte(text.c_str()[length])) --length;
  return length;
}

}  // namespace

const CRuntimeClass* TesselCObject::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TesselCObject", sizeof(TesselCObject),
                                           CScriptVelaObject::GetRuntimeClass()};
  return &runtime_class;
}

int TesselCObject::TCAttach(CTCall*) { return status::kUnsupported; }
int TesselCObject::TCDetach(CTCall*) { return status::kUnsupported; }
int TesselCObject::TCGetName(CTCall*) { return status::kUnsupported; }
int TesselCObject::Show(int) { return status::kUnsupported; }

int TesselCObject::GetString(char* buffer, int size) {
  if (!buffer || size <= 0) return status::kBadArguments;
  buffer[0] = '\0';
  CStringUTF8 text;
  if (const int code = GetString(nullptr, text)) return code;
  const int length = FittingLength(text, size - 1);
  std::memcpy(buffer, text.c_str(), static_cast<std::size_t>(length));
  buffer[length] = '\0';
  return status::kOk;
}

int TesselCObject::GetBufferMSO(void** buffer) { return GetBufferMSO(nullptr, buffer); }
unsigned TesselCObject::GetBufferSize() { return GetBufferSize(nullptr); }
int TesselCObject::SetBufferSize(unsigned bytes) { return SetBufferSize(nullptr, bytes); }
int TesselCObject::GetUpperBound() {
  int upper = -1;
  return GetUpperBound(nullptr, upper) == status::kOk ? upper : -1;
}
void* TesselCObject::GetAddressForDisplay() { return GetAddressForDisplay(nullptr); }

CScriptVelaObject* TesselCObject::GetObjStorage() { return nullptr; }
int TesselCObject::GetObjStorageNames(CScriptVelaObject*) { return status::kUnsupported; }
void* TesselCObject::CreatePrinterDC() { return nullptr; }
void* TesselCObject::GetMatPtr() { return nullptr; }
int TesselCObject::SetCvMat(void*) { return status::kUnsupported; }
int TesselCObject::Attach(CScriptVelaObject*) { return status::kUnsupported; }
int TesselCObject::Detach() { return status::kUnsupported; }

void* TesselCObject::GetBuffer(CTCall* call, unsigned arg, unsigned bytes) {
  constexpr unsigned kMost = 0x7FFFFFFF;
  void* buffer = nullptr;
  if (!call || bytes > kMost) return nullptr;
  return call->GetBuffer(arg, &buffer, static_cast<int>(bytes)) == status::kOk ? buffer : nullptr;
}

void TesselCObject::ReleaseBuffer(CTCall* call, int arg) {
  if (call && arg >= 0) call->ReleaseBuffer(static_cast<unsigned>(arg));
}

CScriptVelaObject* TesselCObject::GetArgObjectPtr(CTCall* call, int arg, int type_id, int flags) {
  tagMSOOBJVECT argument;
  if (!call || call->GetArgumentObject(arg, argument) != status::kOk) return nullptr;
  const bool matches = (argument.type_word & kTypeIdMask) == static_cast<unsigned>(type_id) &&
                       (flags == 0 || (argument.type_word & static_cast<unsigned>(flags)) != 0);
  return matches ? argument.object : nullptr;
}

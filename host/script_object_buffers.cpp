// Lending memory. A plain scalar lends the storage that GetExternalData hands out; every other
// object has to say how itself.
#include <cstring>

#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "host/type_description.h"

namespace {

struct Memory {
  unsigned char* first = nullptr;
  unsigned bytes = 0;    // of the addressed element and those behind it
  unsigned element = 0;  // bytes of one element
};

// The storage of a plain scalar from the addressed element on; empty for anything else.
Memory ScalarStorage(CScriptVelaObject& object, const MSOINDICES* at) {
  const unsigned type = object.GetTypeID();
  if (!vela::host::IsPlainType(type)) return {};
  const int index = at ? at->ObjectIndex() : 0;
  const int count = object.GetArraySize();
  if (index < 0 || index >= count || (at && at->ElementCount())) return {};
  void* address = nullptr;
  if (object.GetExternalData(&address) != status::kOk || !address) return {};
  const unsigned width = PLTTypeToSizeOf(type);
  const std::uint64_t bytes = std::uint64_t{width} * static_cast<unsigned>(count - index);
  if (bytes > 0xFFFFFFFFu) return {};
  return {
      static_cast<unsigned char*>(address) + std::uint64_t{width} * static_cast<unsigned>(index),
      static_cast<unsigned>(bytes), width};
}

}  // namespace

int CScriptVelaObject::GetExternalData(void** address) {
  return address ? status::kUnsupported : status::kBadArguments;
}
int CScriptVelaObject::SetExternalData(void*) { return status::kUnsupported; }
int CScriptVelaObject::SetExternalDataByPtr(void** address) {
  return address ? SetExternalData(*address) : status::kBadArguments;
}
int CScriptVelaObject::ModifyExternalDataPtr(void*, void*) { return status::kUnsupported; }

int CScriptVelaObject::GetBufferMSO(const MSOINDICES* at, void** buffer) {
  if (!buffer) return status::kBadArguments;
  const Memory memory = ScalarStorage(*this, at);
  if (!memory.first) return status::kUnsupported;
  *buffer = memory.first;
  return status::kOk;
}
int CScriptVelaObject::GetBufferMSOEx(const MSOINDICES* at, unsigned element_type, void** buffer) {
  return element_type == GetInternalDataTypeID() ? GetBufferMSO(at, buffer) : status::kUnsupported;
}
int CScriptVelaObject::ReleaseBufferMSO(const MSOINDICES*, void*) { return status::kOk; }
unsigned CScriptVelaObject::GetBufferSize(const MSOINDICES* at) {
  return ScalarStorage(*this, at).bytes;
}
int CScriptVelaObject::SetBufferSize(const MSOINDICES*, unsigned) { return status::kUnsupported; }

void* CScriptVelaObject::GetAddressForDisplay(const MSOINDICES* at) {
  return ScalarStorage(*this, at).first;
}
void* CScriptVelaObject::GetArrayElement(const MSOINDICES* at, int index) {
  return index == 0 ? ScalarStorage(*this, at).first : nullptr;
}
void* CScriptVelaObject::GetArgObjectPtrMSO(const MSOINDICES* at, unsigned type_id) {
  return type_id == GetInternalDataTypeID() ? ScalarStorage(*this, at).first : nullptr;
}

int CScriptVelaObject::GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at) {
  const Memory memory = ScalarStorage(*this, at);
  if (!memory.first) return status::kUnsupported;
  if (!buffer || size < memory.element) return status::kBadArguments;
  std::memcpy(buffer, memory.first, memory.element);
  return status::kOk;
}
int CScriptVelaObject::InitalizeFromMemory(const void*, int) { return status::kUnsupported; }
int CScriptVelaObject::ReadFromMemory(const void*, int) { return status::kUnsupported; }
int CScriptVelaObject::WriteToMemory(void*, int) { return status::kUnsupported; }

// Identity, life cycle and neutral answers; the values, buffers and the rest have their own files.
#include "frame/interface/script_object.h"

#include <atomic>
#include <limits>

#include "host/object_registry.h"
#include "host/type_description.h"

namespace {

std::uint64_t NextCreationId() {
  static std::atomic<std::uint64_t> last = 0;
  return last.fetch_add(1, std::memory_order_relaxed) + 1;
}

// The count of an object that is being destroyed: far below 0, so that references taken and dropped
// on the way down cannot destroy it again.
constexpr int kDestroying = std::numeric_limits<int>::min() / 2;

}  // namespace

CScriptVelaObject::CScriptVelaObject() : creation_id_(NextCreationId()) { AddToMap(this); }

CScriptVelaObject::~CScriptVelaObject() { RemoveFromMap(this); }

int CScriptVelaObject::AddRef() { return ++references_; }

int CScriptVelaObject::Release() {
  if (references_ > 1 || references_ < 0) return --references_;
  references_ = kDestroying;
  delete this;
  return 0;
}

void CScriptVelaObject::AddToMap(CScriptVelaObject* object) {
  if (object) vela::host::AddLiveObject(object);
}

void CScriptVelaObject::RemoveFromMap(CScriptVelaObject* object) {
  if (object) vela::host::RemoveLiveObject(object);
}

bool CScriptVelaObject::IsInMap(const CScriptVelaObject* object) {
  return vela::host::IsLiveObject(object);
}

unsigned CScriptVelaObject::GetLiveObjectCount() {
  return static_cast<unsigned>(vela::host::CountLiveObjects());
}

void CScriptVelaObject::InitTypeIDs(unsigned type_word) { type_word_ = type_word; }
unsigned CScriptVelaObject::GetTypeID() const { return type_word_; }
unsigned CScriptVelaObject::GetTypeBitID() const { return GetTypeID() & ~unsigned{kTypeIdMask}; }
unsigned CScriptVelaObject::GetUserTypeID() const { return GetTypeID() & kTypeIdMask; }
unsigned CScriptVelaObject::GetInternalDataTypeID() const { return GetTypeID() & kTypeIdMask; }

unsigned CScriptVelaObject::GetTypeIDCheckIndex(const MSOINDICES* at) {
  if (!at) return GetTypeID();
  const int index = at->ObjectIndex();
  if (index < 0 || index >= GetArraySize()) return kTypeNone;
  return at->ElementCount() ? GetInternalDataTypeID() : GetTypeID();
}

const char* CScriptVelaObject::GetDataTypeName() const {
  return vela::host::TypeName(GetInternalDataTypeID());
}
const char* CScriptVelaObject::GetDateTypeString() const { return GetDataTypeName(); }
const char* CScriptVelaObject::GetTCTypeName() const {
  return vela::host::TypeWordName(GetTypeID());
}
const CRuntimeClass* CScriptVelaObject::GetThisClass() const { return GetRuntimeClass(); }
const CRuntimeClass* CScriptVelaObject::GetBaseClass() const {
  return GetThisClass()->m_pBaseClass;
}

int CScriptVelaObject::IsSameID(const CScriptVelaObject* other) const {
  return other && other->GetTypeID() == GetTypeID();
}
int CScriptVelaObject::IsSameTypeAndMemoryModel(const CScriptVelaObject*) const { return 0; }

int CScriptVelaObject::GetArraySize() const { return 1; }

// What an object that is no pointer, no reference and bound to nothing answers.
CScriptVelaObject* CScriptVelaObject::GetActualObject() { return this; }
CScriptVelaObject* CScriptVelaObject::GetActualObjectEx(MSOINDICES*) { return this; }
CScriptVelaObject* CScriptVelaObject::GetReferenceTarget(MSOINDICES*) { return this; }
CScriptVelaObject* CScriptVelaObject::GetOneTarget(const MSOINDICES*) { return this; }
CScriptVelaObject* CScriptVelaObject::DeReference() { return this; }
CScriptVelaObject* CScriptVelaObject::GetTargetForPtrAssignment() { return nullptr; }
CScriptVelaObject* CScriptVelaObject::CreateMemoryPtrTarget(unsigned) { return nullptr; }
CScriptVelaObject* CScriptVelaObject::CreateCopy() { return nullptr; }
CScriptVelaObject* CScriptVelaObject::StorageXVariable() { return nullptr; }
int CScriptVelaObject::IsNULLPtr() { return 0; }
int CScriptVelaObject::DiagnoseJunkPointers() { return 0; }
int CScriptVelaObject::RequiresMemoryPtr() { return 0; }
int CScriptVelaObject::SupportsMemoryPtr() { return 0; }
int CScriptVelaObject::CheckCreateMemoryPtrObjects() { return status::kOk; }
void* CScriptVelaObject::GetMemoryPtrAddress() { return nullptr; }
void* CScriptVelaObject::GetPLFunction() { return nullptr; }

int CScriptVelaObject::SetMemberMemory(void*, unsigned) { return status::kUnsupported; }
int CScriptVelaObject::SetMemoryPtrObjectCreationID(std::uint64_t) { return status::kUnsupported; }
int CScriptVelaObject::SetMemoryPtrObject(CScriptVelaObject*) { return status::kUnsupported; }
int CScriptVelaObject::SetMemoryPtr(void*) { return status::kUnsupported; }

int CScriptVelaObject::ResetValue() { return status::kUnsupported; }
int CScriptVelaObject::Operate2(const MSOINDICES*, unsigned, const tagMSOOBJVECT&, unsigned) {
  return status::kUnsupported;
}
int CScriptVelaObject::CompareVals(const MSOINDICES*, unsigned, const tagMSOOBJVECT&, unsigned*) {
  return status::kUnsupported;
}
int CScriptVelaObject::DoRuntimeCopyOvers(CScriptVelaObject*) { return status::kUnsupported; }

void CScriptVelaObject::SetModify(int modified) { modified_ = modified; }

int CScriptVelaObject::ExecuteTCDestructor() { return status::kOk; }
int CScriptVelaObject::CleanupVela() { return status::kOk; }
int CScriptVelaObject::DetachAllTesselObjs() { return status::kOk; }
int CScriptVelaObject::HasVCRef() { return 0; }
int CScriptVelaObject::IsObjReadyForTesselClose() { return 1; }

// Identity, life cycle, and how an object answers that is no container, points at nothing and is
// bound to nothing; values, buffers and the rest have their own files.
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

const CRuntimeClass* CScriptVelaObject::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"CScriptVelaObject", sizeof(CScriptVelaObject),
                                           CTypeBase::GetRuntimeClass()};
  return &runtime_class;
}

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

// What only containers and the types bound to host data can do.
int CScriptVelaObject::GetUpperBound(const MSOINDICES*, int&) { return status::kUnsupported; }
int CScriptVelaObject::GetMatrixDimensions(int*, int*, const MSOINDICES*) { return 0; }
int CScriptVelaObject::SetMatrixDimension(int, int, const MSOINDICES*) {
  return status::kUnsupported;
}
int CScriptVelaObject::SetVectorDimension(const MSOINDICES*, int) { return status::kUnsupported; }
int CScriptVelaObject::CheckDimensions(const CScriptVelaObject*) { return status::kUnsupported; }
int CScriptVelaObject::CopyFromMatrix(const MSOINDICES*, CScriptVelaObject*) {
  return status::kUnsupported;
}
int CScriptVelaObject::GetAsStringVector(CScriptVelaObject*) { return status::kUnsupported; }
int CScriptVelaObject::PutStringVector(CScriptVelaObject*) { return status::kUnsupported; }
int CScriptVelaObject::SetSizeForVectorToSimpleTypeFuncCall(const MSOINDICES*, int) {
  return status::kUnsupported;
}
int CScriptVelaObject::GetLimitsForVectorToSimpleTypeFuncCall(const MSOINDICES*, int&, int&) {
  return status::kUnsupported;
}

int CScriptVelaObject::GetVecArrayIndex(const MSOINDICES* at) const {
  return at ? at->ObjectIndex() : 0;
}
int CScriptVelaObject::IsValidElement(const MSOINDICES* at) {
  if (!at) return 1;
  const int index = at->ObjectIndex();
  return index >= 0 && index < GetArraySize() && at->ElementCount() == 0;
}
int CScriptVelaObject::GetCurrentIndices(MSOINDICES*) const { return status::kUnsupported; }
int CScriptVelaObject::SetCurrentIndices(const MSOINDICES*) { return status::kUnsupported; }
int CScriptVelaObject::ShiftIndex(int) { return status::kUnsupported; }

// The whole row or layer that a record addresses is the record without its element indices.
int CScriptVelaObject::GetIndicesForWholeVectorOperation(const MSOINDICES* at, MSOINDICES* whole) {
  if (!whole) return status::kBadArguments;
  *whole = at ? MSOINDICES{at->ObjectKind(), at->index, 0, 0} : MSOINDICES{};
  return status::kOk;
}
int CScriptVelaObject::GetIndicesForWholeMatrixOperation(const MSOINDICES* at, MSOINDICES* whole) {
  return GetIndicesForWholeVectorOperation(at, whole);
}

int CScriptVelaObject::GetSourceRange(const MSOINDICES*, CStringUTF8&) {
  return status::kUnsupported;
}
int CScriptVelaObject::SetSourceRange(const MSOINDICES*, const char*) {
  return status::kUnsupported;
}
int CScriptVelaObject::GetSourceCTKRange(const MSOINDICES*, void*) { return status::kUnsupported; }
int CScriptVelaObject::SetSourceCTKRange(const MSOINDICES*, const void*) {
  return status::kUnsupported;
}
int CScriptVelaObject::SetFromDataset(CScriptVelaObject*) { return status::kUnsupported; }
int CScriptVelaObject::SetFromDatasetEx(CScriptVelaObject*, unsigned) {
  return status::kUnsupported;
}
void* CScriptVelaObject::GetDatasetObject(const MSOINDICES*) { return nullptr; }
int CScriptVelaObject::GetDatasetValuesAccessInfo(const MSOINDICES*, void*) {
  return status::kUnsupported;
}
int CScriptVelaObject::SupportsAuxillX() { return 0; }
int CScriptVelaObject::IsMixedTypeDataSet() { return 0; }
int CScriptVelaObject::SetMixedTypeDataSet(int) { return status::kUnsupported; }
int CScriptVelaObject::SetDataRange(const MSOINDICES*, int, int) { return status::kUnsupported; }
int CScriptVelaObject::Update(const MSOINDICES*) { return status::kUnsupported; }
int CScriptVelaObject::UpdateFromExternalSource() { return status::kUnsupported; }
int CScriptVelaObject::UpdateCacheAfterAttachmentChange() { return status::kUnsupported; }
int CScriptVelaObject::IsNoVectorOrMatrixSource() { return 0; }
int CScriptVelaObject::IsRowHide(int) { return 0; }
int CScriptVelaObject::IsIgnoreHiddenRow() { return 0; }

// The debugger's view: one line per element of the script array, in the element's own text form.
int CScriptVelaObject::GetDisplaySize(int& rows, int& cols) {
  rows = GetArraySize();
  cols = 1;
  return status::kOk;
}
int CScriptVelaObject::GetDisplaySizeEx(const MSOINDICES*, int& rows, int& cols) {
  return GetDisplaySize(rows, cols);
}

int CScriptVelaObject::GetDisplayElement(CStringUTF8& text, int index) {
  if (index == -1) return GetDisplayElementEx(text, nullptr);
  MSOINDICES at;
  if (const int code = PrepareDisplayIndices(&at, index)) return code;
  return GetDisplayElementEx(text, &at);
}
int CScriptVelaObject::GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at) {
  return GetString(at, text);
}
int CScriptVelaObject::GetDisplayArrayElement(CStringUTF8& text, int index) {
  return GetDisplayElement(text, index);
}
int CScriptVelaObject::GetMultipartDisplayElement(CStringUTF8& text, int index, int part) {
  return part == 0 ? GetDisplayElement(text, index) : status::kUnsupported;
}
int CScriptVelaObject::PrepareDisplayIndices(MSOINDICES* at, int index) {
  if (!at) return status::kBadArguments;
  if (index < 0 || index >= GetArraySize()) return status::kOutOfRange;
  *at = MSOINDICES::Object(index);
  return status::kOk;
}
int CScriptVelaObject::GetDisplayExpandableHeader(CStringUTF8& text) {
  text = GetTCTypeName();
  return status::kOk;
}
int CScriptVelaObject::IsDisplayElementExpandable(int) { return 0; }
int CScriptVelaObject::IsDisplayElementAddType() { return 0; }
int CScriptVelaObject::IsDisplayHeaderAddType() { return 0; }
int CScriptVelaObject::GetWrpperObjectDisplayInfo(CStringUTF8&, const MSOINDICES*) {
  return status::kUnsupported;
}
int CScriptVelaObject::InfoVariableValue(CStringUTF8& text) {
  return GetDisplayElementEx(text, nullptr);
}

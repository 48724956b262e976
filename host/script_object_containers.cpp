// What only containers and the types bound to host data can do, as every other object answers it.
#include "frame/interface/script_object.h"

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

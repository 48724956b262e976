// The debugger's view: one line per element of the script array, in the element's own text form.
#include "frame/interface/script_object.h"

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

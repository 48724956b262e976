// Automation. A simple scalar travels as the automation type of its own width, a complex value or
// point as an array of its parts, everything else as text where it has one to give or take.
#include <array>
#include <exception>

#include "frame/interface/automation_values.h"
#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "frame/interface/type_words.h"
#include "platform/com_variant.h"

namespace {

int ReadInteger(CScriptVelaObject& object, const MSOINDICES* at, bool is_unsigned, VARIANT& value) {
  value.vt = is_unsigned ? VT_UI8 : VT_I8;
  std::int64_t integer = 0;
  std::uint64_t natural = 0;
  const int code =
      is_unsigned ? object.GetNumericValue(at, natural) : object.GetNumericValue(at, integer);
  value.llVal = is_unsigned ? static_cast<std::int64_t>(natural) : integer;
  return code;
}

int ReadReal(CScriptVelaObject& object, const MSOINDICES* at, VARIANT& value) {
  value.vt = VT_R8;
  return object.GetNumericValue(at, value.dblVal);
}

int ReadText(CScriptVelaObject& object, const MSOINDICES* at, VARIANT& value) {
  CStringUTF8 text;
  if (const int code = object.GetString(at, text)) return code;
  return VariantOfText(text, value) == status::kOk ? status::kOk : status::kAutomationFailed;
}

template <class Point>
int ReadPoint(CScriptVelaObject& object, const MSOINDICES* at, VARIANT& value) {
  Point point;
  if (const int code = object.GetPointValue(at, point)) return code;
  std::array<double, Point::kDimensions> parts;
  for (int i = 0; i < Point::kDimensions; ++i) parts[i] = static_cast<double>(point[i]);
  return VariantOfParts(parts, value) == status::kOk ? status::kOk : status::kAutomationFailed;
}

int ReadParts(unsigned type_id, CScriptVelaObject& object, const MSOINDICES* at, VARIANT& value) {
  switch (type_id) {
    case kTypePointInt:
      return ReadPoint<PointInt>(object, at, value);
    case kTypePointDouble:
      return ReadPoint<PointDouble>(object, at, value);
    case kTypePoint3D:
      return ReadPoint<Point3D>(object, at, value);
    default:
      OneTCcomplex number;
      if (const int code = object.GetNumericValue(at, number)) return code;
      return number.GetVariant(value) ? status::kOk : status::kAutomationFailed;
  }
}

// Whether the type is a value of several numbers.
bool HasParts(unsigned type_id) {
  return type_id == kTypeComplex || type_id == kTypePointInt || type_id == kTypePointDouble ||
         type_id == kTypePoint3D;
}

int ReadAs(WORD type, unsigned type_id, CScriptVelaObject& object, const MSOINDICES* at,
           VARIANT& value) {
  if (HasParts(type_id)) return ReadParts(type_id, object, at, value);
  switch (type) {
    case VT_EMPTY:
      return ReadText(object, at, value);
    case VT_R4:
    case VT_R8:
      return ReadReal(object, at, value);
    default:
      return ReadInteger(object, at, type == VT_UI8, value);
  }
}

int WriteParts(unsigned type_id, CScriptVelaObject& object, const MSOINDICES* at,
               const VARIANT& value) {
  std::array<double, 3> parts{};
  if (const int code = PartsOfVariant(value, parts)) return code;
  if (type_id == kTypeComplex) return object.SetNumericValue(at, OneTCcomplex(parts[0], parts[1]));
  return object.SetPoint(at, {parts[0], parts[1], parts[2]});
}

int WriteNumber(CScriptVelaObject& object, const MSOINDICES* at, const VARIANT& value) {
  VariantNumber number;
  if (const int code = NumberOfVariant(value, number)) return code;
  return std::visit([&](auto n) { return object.SetNumericValue(at, n); }, number);
}

int WriteText(CScriptVelaObject& object, const MSOINDICES* at, const VARIANT& value) {
  CStringUTF8 text;
  if (const int code = TextOfVariant(value, text)) return code;
  return object.SetStringValue(at, text);
}

}  // namespace

int CScriptVelaObject::GetIntoVariant(const MSOINDICES* at, VARIANT* value) try {
  if (!value) return status::kBadArguments;
  const unsigned type_id = GetTypeIDCheckIndex(at);
  const WORD type = GetVariantTypeFromSimpleType(type_id);
  CComVariant made;
  if (const int code = ReadAs(type, type_id, *this, at, made)) return code;
  if (type != VT_EMPTY && FAILED(made.ChangeType(type))) return status::kAutomationFailed;
  VariantClear(value);
  *value = made.Detach();
  return status::kOk;
} catch (const std::exception&) {
  return status::kAutomationFailed;
}

int CScriptVelaObject::SetFromVariant(const MSOINDICES* at, const VARIANT* value) try {
  if (!value) return status::kBadArguments;
  const unsigned type_id = GetTypeIDCheckIndex(at);
  if (HasParts(type_id)) return WriteParts(type_id, *this, at, *value);
  return GetVariantTypeFromSimpleType(type_id) == VT_EMPTY ? WriteText(*this, at, *value)
                                                           : WriteNumber(*this, at, *value);
} catch (const std::exception&) {
  return status::kBadValue;
}

int CScriptVelaObject::GetTCONEVARIANTforCOMMethodArg(const MSOINDICES* at, VARIANT* value) {
  return GetIntoVariant(at, value);
}
int CScriptVelaObject::GetVariantArray(const MSOINDICES*, VARIANT*, int) {
  return status::kUnsupported;
}
int CScriptVelaObject::SetVariantArray(const MSOINDICES*, const VARIANT*) {
  return status::kUnsupported;
}
int CScriptVelaObject::SetPtrArgForCOMEventHandlingFromWrongVariantType(const MSOINDICES*,
                                                                        VARIANT*) {
  return status::kUnsupported;
}
int CScriptVelaObject::IsVariantArraySource() { return 0; }
IDispatch* CScriptVelaObject::GetDispatchInterface(const MSOINDICES*) { return nullptr; }
VARIANT* CScriptVelaObject::GetVariantAddress(const MSOINDICES*) { return nullptr; }

// Automation. A simple scalar travels as the automation type of its own width, everything else as
// text where it has one to give or take.
#include <exception>
#include <iterator>
#include <string>
#include <utf8.h>

#include "frame/interface/host_services.h"
#include "frame/interface/script_object.h"
#include "platform/automation.h"

namespace {

class OwnedVariant {
 public:
  OwnedVariant() { VariantInit(&value); }
  ~OwnedVariant() { VariantClear(&value); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;

  VARIANT value;
};

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
  const std::string valid = utf8::replace_invalid(text.View());
  std::u16string units;
  utf8::utf8to16(valid.begin(), valid.end(), std::back_inserter(units));
  value.bstrVal = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(units.data()),
                                    static_cast<UINT>(units.size()));
  if (!value.bstrVal) return status::kAutomationFailed;
  value.vt = VT_BSTR;
  return status::kOk;
}

int ReadAs(WORD type, CScriptVelaObject& object, const MSOINDICES* at, VARIANT& value) {
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

int WriteText(CScriptVelaObject& object, const MSOINDICES* at, const VARIANT& value) {
  const auto* units = reinterpret_cast<const char16_t*>(value.bstrVal);
  std::string text;
  utf8::utf16to8(units, units + SysStringLen(value.bstrVal), std::back_inserter(text));
  return object.SetString(at, text.c_str());
}

bool Convert(VARIANT& to, const VARIANT& from, WORD type) {
  return SUCCEEDED(VariantChangeType(&to, const_cast<VARIANT*>(&from), 0, type));
}

}  // namespace

int CScriptVelaObject::GetIntoVariant(const MSOINDICES* at, VARIANT* value) try {
  if (!value) return status::kBadArguments;
  const WORD type = GetVariantTypeFromSimpleType(GetTypeIDCheckIndex(at));
  OwnedVariant made;
  if (const int code = ReadAs(type, *this, at, made.value)) return code;
  if (type != VT_EMPTY && !Convert(made.value, made.value, type)) return status::kAutomationFailed;
  VariantClear(value);
  *value = made.value;
  VariantInit(&made.value);
  return status::kOk;
} catch (const std::exception&) {
  return status::kAutomationFailed;
}

int CScriptVelaObject::SetFromVariant(const MSOINDICES* at, const VARIANT* value) try {
  if (!value) return status::kBadArguments;
  const WORD type = GetVariantTypeFromSimpleType(GetTypeIDCheckIndex(at));
  OwnedVariant carrier;
  switch (type) {
    case VT_EMPTY:
      if (!Convert(carrier.value, *value, VT_BSTR)) return status::kBadValue;
      return WriteText(*this, at, carrier.value);
    case VT_I8:
      if (!Convert(carrier.value, *value, VT_I8)) return status::kBadValue;
      return SetNumericValue(at, static_cast<std::int64_t>(carrier.value.llVal));
    case VT_UI8:
      if (!Convert(carrier.value, *value, VT_UI8)) return status::kBadValue;
      return SetNumericValue(at, static_cast<std::uint64_t>(carrier.value.ullVal));
    default:
      if (!Convert(carrier.value, *value, VT_R8)) return status::kBadValue;
      return SetNumericValue(at, carrier.value.dblVal);
  }
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

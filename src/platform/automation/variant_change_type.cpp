#if !defined(_WIN32)

#include <algorithm>
#include <optional>
#include <string>

#include "platform/automation/convert.h"
#include "platform/automation/date.h"
#include "platform/automation/number_text.h"
#include "platform/automation/text_scanner.h"
#include "platform/automation/value_types.h"

namespace vela::platform {
namespace {

std::u16string_view TextOf(const VARIANT& value) {
  return {value.bstrVal, SysStringLen(value.bstrVal)};
}

BSTR Widen(const std::string& text) {
  const std::u16string wide(text.begin(), text.end());
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

bool IsWord(std::u16string_view text, std::u16string_view lower) {
  const auto equal = [](char16_t a, char16_t b) { return IsLetter(a) && (a | 0x20) == b; };
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), equal);
}

// The words that a truth value is written as, and in files; nothing for any other text.
std::optional<bool> TruthOf(std::u16string_view text) {
  if (IsWord(text, u"true") || text == u"#TRUE#") return true;
  if (IsWord(text, u"false") || text == u"#FALSE#") return false;
  return std::nullopt;
}

HRESULT FromText(std::u16string_view text, VARTYPE type, VARIANT& value) {
  const auto truth = type == VT_BOOL ? TruthOf(text) : std::nullopt;
  Number number;
  HRESULT result = S_OK;
  if (truth) {
    number = ExactOf(std::int64_t{*truth});
  } else if (type == VT_DATE) {
    double days = 0;
    result = ParseDate(text, days);
    number = days;
  } else {
    result = ParseNumber(text, type, number);
  }
  return FAILED(result) ? result : WriteNumber(number, type, value);
}

// The bytes of an array of VT_UI1 as they are.
HRESULT BytesToText(SAFEARRAY* array, VARIANT& value) {
  void* data = nullptr;
  ULONG size = 0;
  const HRESULT result = array == nullptr ? E_INVALIDARG : SafeArrayAccessData(array, &data);
  if (FAILED(result)) return result;
  if (SafeArrayGetDim(array) == 1) size = array->rgsabound[0].cElements;
  value.bstrVal = SysAllocStringByteLen(static_cast<const char*>(data), size);
  SafeArrayUnaccessData(array);
  if (value.bstrVal == nullptr) return E_OUTOFMEMORY;
  value.vt = VT_BSTR;
  return S_OK;
}

// And back.
HRESULT TextToBytes(BSTR text, VARIANT& value) {
  const UINT size = SysStringByteLen(text);
  value.parray = SafeArrayCreateVector(VT_UI1, 0, size);
  if (value.parray == nullptr) return E_OUTOFMEMORY;
  std::copy_n(reinterpret_cast<const char*>(text), size, static_cast<char*>(value.parray->pvData));
  value.vt = VT_ARRAY | VT_UI1;
  return S_OK;
}

HRESULT ToText(const VARIANT& source, USHORT flags, VARIANT& value) {
  std::string text;
  HRESULT result = S_OK;
  if (source.vt == VT_BOOL && (flags & VARIANT_ALPHABOOL)) {
    text = source.boolVal == VARIANT_FALSE ? "False" : "True";
  } else if (source.vt == VT_DATE) {
    result = FormatDate(source.date, text);
  } else if (source.vt != VT_EMPTY) {
    Number number;
    result = ReadNumber(source, number);
    if (SUCCEEDED(result)) text = FormatNumber(number);
  }
  if (FAILED(result)) return result;
  value.bstrVal = Widen(text);
  if (value.bstrVal == nullptr) return E_OUTOFMEMORY;
  value.vt = VT_BSTR;
  return S_OK;
}

HRESULT ToInterface(const VARIANT& source, VARTYPE type, VARIANT& value) {
  if (source.vt != VT_DISPATCH && source.vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
  void* object = nullptr;
  if (source.punkVal != nullptr) {
    const IID& iid = type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown;
    if (FAILED(source.punkVal->QueryInterface(iid, &object))) return DISP_E_TYPEMISMATCH;
  }
  value.vt = type;
  value.byref = object;
  return S_OK;
}

// Bytes of an integer type, 0 for any other.
int IntegerWidth(VARTYPE type) {
  const ValueType* known = FindValueType(type);
  return known != nullptr && known->kind == ValueKind::kInteger && type != VT_BOOL ? known->bytes
                                                                                   : 0;
}

// Between integers of one width the bits stay, and those of a truth value fill any integer.
bool KeepsBits(const VARIANT& source, VARTYPE type) {
  const int width = IntegerWidth(type);
  return width != 0 && (source.vt == VT_BOOL || IntegerWidth(source.vt) == width);
}

}  // namespace

HRESULT ReadDefaultProperty(const VARIANT& source, VARIANT& value) {
  if (source.pdispVal == nullptr) return DISP_E_TYPEMISMATCH;
  DISPPARAMS none = {};
  const HRESULT result =
      source.pdispVal->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYGET,
                              &none, &value, nullptr, nullptr);
  return FAILED(result) ? DISP_E_TYPEMISMATCH : S_OK;
}

HRESULT Convert(const VARIANT& source, USHORT flags, VARTYPE type, VARIANT& value) {
  if (source.vt == type) return VariantCopy(&value, &source);
  if (source.vt == (VT_ARRAY | VT_UI1) && type == VT_BSTR) {
    return BytesToText(source.parray, value);
  }
  if (source.vt == VT_BSTR && type == (VT_ARRAY | VT_UI1)) {
    return TextToBytes(source.bstrVal, value);
  }
  if ((source.vt | type) & VT_ARRAY || type == VT_ERROR || source.vt == VT_ERROR ||
      source.vt == VT_RECORD) {
    return DISP_E_TYPEMISMATCH;
  }
  if (type == VT_NULL || (type == VT_EMPTY && source.vt != VT_NULL)) {
    value.vt = type;
    return S_OK;
  }
  if (type == VT_DISPATCH || type == VT_UNKNOWN) return ToInterface(source, type, value);
  if (source.vt == VT_DISPATCH && !(flags & VARIANT_NOVALUEPROP)) {
    OwnedValue property;
    const HRESULT result = ReadDefaultProperty(source, *property);
    return FAILED(result) ? result : Convert(*property, flags | VARIANT_NOVALUEPROP, type, value);
  }
  if (type == VT_BSTR) return ToText(source, flags, value);
  if (source.vt == VT_BSTR) return FromText(TextOf(source), type, value);
  Number number;
  const HRESULT result = ReadNumber(source, number);
  if (FAILED(result)) return result;
  if (KeepsBits(source, type)) {
    value.llVal = source.vt == VT_BOOL ? source.boolVal : source.llVal;
    value.vt = type;
    return S_OK;
  }
  return WriteNumber(number, type, value);
}

}  // namespace vela::platform

HRESULT VariantChangeTypeEx(VARIANT* destination, const VARIANT* source, LCID, USHORT flags,
                            VARTYPE type) {
  using namespace vela::platform;
  if (destination == nullptr || source == nullptr) return E_INVALIDARG;
  if (!IsVariantType(source->vt) || !IsVariantType(type)) return DISP_E_BADVARTYPE;
  if (type & VT_BYREF) return DISP_E_TYPEMISMATCH;
  OwnedValue value;
  OwnedValue converted;
  HRESULT result = VariantCopyInd(&*value, source);
  if (SUCCEEDED(result)) result = Convert(*value, flags, type, *converted);
  return FAILED(result) ? result : converted.MoveTo(*destination);
}

HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags, VARTYPE type) {
  return VariantChangeTypeEx(destination, source, LOCALE_INVARIANT, flags, type);
}

#endif

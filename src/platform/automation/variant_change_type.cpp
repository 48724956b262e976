#if !defined(_WIN32)

#include <algorithm>
#include <string>

#include "platform/automation/convert.h"
#include "platform/automation/number_text.h"
#include "platform/automation/value_types.h"

namespace vela::platform {
namespace {

// ASCII for the number scanner; other units become a character that no number contains.
std::string Narrow(BSTR text) {
  std::string narrow(SysStringLen(text), '\0');
  std::transform(text, text + narrow.size(), narrow.begin(),
                 [](OLECHAR unit) { return unit < 0x80 ? static_cast<char>(unit) : '\x7F'; });
  return narrow;
}

BSTR Widen(const std::string& text) {
  const std::u16string wide(text.begin(), text.end());
  return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

bool EqualsIgnoringCase(const std::string& text, const char* lower) {
  const auto equal = [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; };
  return std::equal(text.begin(), text.end(), lower, lower + std::strlen(lower), equal);
}

HRESULT TextToTruth(const std::string& text, VARIANT& value) {
  const bool yes = EqualsIgnoringCase(text, "true") || EqualsIgnoringCase(text, "#true#");
  const bool no = EqualsIgnoringCase(text, "false") || EqualsIgnoringCase(text, "#false#");
  if (yes || no) {
    value.vt = VT_BOOL;
    value.boolVal = yes ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }
  Number number;
  const HRESULT result = ParseNumber(text, VT_R8, number);
  return FAILED(result) ? result : WriteNumber(number, VT_BOOL, value);
}

HRESULT TextToNumber(BSTR text, VARTYPE type, VARIANT& value) {
  if (type == VT_DATE) return DISP_E_TYPEMISMATCH;
  const std::string narrow = Narrow(text);
  if (type == VT_BOOL) return TextToTruth(narrow, value);
  Number number;
  const HRESULT result = ParseNumber(narrow, type, number);
  return FAILED(result) ? result : WriteNumber(number, type, value);
}

HRESULT ToText(const VARIANT& source, USHORT flags, VARIANT& value) {
  if (source.vt == VT_DATE) return DISP_E_TYPEMISMATCH;
  std::string text;
  if (source.vt == VT_BOOL && (flags & VARIANT_ALPHABOOL)) {
    text = source.boolVal == VARIANT_FALSE ? "False" : "True";
  } else if (source.vt != VT_EMPTY) {
    Number number;
    const HRESULT result = ReadNumber(source, number);
    if (FAILED(result)) return result;
    const auto* exact = std::get_if<ExactNumber>(&number);
    text = exact != nullptr ? Format(*exact)
                            : FormatReal(std::get<double>(number), source.vt == VT_R4 ? 7 : 15);
  }
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
  if ((source.vt | type) & VT_ARRAY) return DISP_E_TYPEMISMATCH;
  if (type == VT_DISPATCH || type == VT_UNKNOWN) return ToInterface(source, type, value);
  if (source.vt == VT_DISPATCH && !(flags & VARIANT_NOVALUEPROP)) {
    VARIANT property = {};
    HRESULT result = ReadDefaultProperty(source, property);
    if (SUCCEEDED(result)) result = Convert(property, flags | VARIANT_NOVALUEPROP, type, value);
    VariantClear(&property);
    return result;
  }
  if (type == VT_BSTR) return ToText(source, flags, value);
  if (source.vt == VT_BSTR) return TextToNumber(source.bstrVal, type, value);
  Number number;
  const HRESULT result = ReadNumber(source, number);
  if (FAILED(result)) return result;
  if (KeepsBits(source, type)) {
    // Integers of one width are interchangeable, and a true value has every bit set.
    value.llVal = source.vt == VT_BOOL ? (source.boolVal == VARIANT_FALSE ? 0 : -1) : source.llVal;
    value.vt = type;
    return S_OK;
  }
  return WriteNumber(number, type, value);
}

}  // namespace vela::platform

namespace {

bool IsConvertibleType(VARTYPE type) {
  const VARTYPE base = type & VT_TYPEMASK;
  if (type & (VT_VECTOR | VT_RESERVED)) return false;
  return base < VT_VOID && base != 15 && !((type & (VT_ARRAY | VT_BYREF)) && base <= VT_NULL);
}

}  // namespace

HRESULT VariantChangeTypeEx(VARIANT* destination, const VARIANT* source, LCID, USHORT flags,
                            VARTYPE type) {
  if (destination == nullptr || source == nullptr) return E_INVALIDARG;
  if (!IsConvertibleType(source->vt) || !IsConvertibleType(type)) return DISP_E_BADVARTYPE;
  if (type & VT_BYREF) return DISP_E_TYPEMISMATCH;
  vela::platform::OwnedValue value;
  vela::platform::OwnedValue converted;
  HRESULT result = VariantCopyInd(&*value, source);
  if (SUCCEEDED(result)) result = vela::platform::Convert(*value, flags, type, *converted);
  return FAILED(result) ? result : converted.MoveTo(*destination);
}

HRESULT VariantChangeType(VARIANT* destination, const VARIANT* source, USHORT flags, VARTYPE type) {
  return VariantChangeTypeEx(destination, source, LOCALE_INVARIANT, flags, type);
}

#endif

#include "tools/automation_grid/describe.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>

namespace vela::grid {
namespace {

struct TypeName {
  VARTYPE type;
  const char* name;
};
constexpr TypeName kTypeNames[] = {
    {VT_EMPTY, "EMPTY"},     {VT_NULL, "NULL"},       {VT_I1, "I1"},
    {VT_UI1, "UI1"},         {VT_I2, "I2"},           {VT_UI2, "UI2"},
    {VT_I4, "I4"},           {VT_UI4, "UI4"},         {VT_I8, "I8"},
    {VT_UI8, "UI8"},         {VT_INT, "INT"},         {VT_UINT, "UINT"},
    {VT_R4, "R4"},           {VT_R8, "R8"},           {VT_CY, "CY"},
    {VT_DATE, "DATE"},       {VT_DECIMAL, "DECIMAL"}, {VT_BOOL, "BOOL"},
    {VT_BSTR, "BSTR"},       {VT_ERROR, "ERROR"},     {VT_DISPATCH, "DISPATCH"},
    {VT_UNKNOWN, "UNKNOWN"}, {VT_VARIANT, "VARIANT"}, {VT_RECORD, "RECORD"}};

struct CodeName {
  HRESULT code;
  const char* name;
};
constexpr CodeName kCodeNames[] = {{S_OK, "ok"},
                                   {S_FALSE, "S_FALSE"},
                                   {E_NOTIMPL, "E_NOTIMPL"},
                                   {E_INVALIDARG, "E_INVALIDARG"},
                                   {E_OUTOFMEMORY, "E_OUTOFMEMORY"},
                                   {E_UNEXPECTED, "E_UNEXPECTED"},
                                   {E_FAIL, "E_FAIL"},
                                   {DISP_E_TYPEMISMATCH, "TYPEMISMATCH"},
                                   {DISP_E_BADVARTYPE, "BADVARTYPE"},
                                   {DISP_E_OVERFLOW, "OVERFLOW"},
                                   {DISP_E_BADINDEX, "BADINDEX"},
                                   {DISP_E_ARRAYISLOCKED, "ARRAYISLOCKED"},
                                   {DISP_E_DIVBYZERO, "DIVBYZERO"},
                                   {DISP_E_MEMBERNOTFOUND, "MEMBERNOTFOUND"}};

template <typename Number>
std::string NumberText(Number number) {
  if (number != number) return "nan";
  char text[64];
  return {text, std::to_chars(text, text + sizeof text, number).ptr};
}

std::string QuotedText(BSTR text) {
  if (text == nullptr) return "null";
  std::string quoted = "\"";
  for (UINT i = 0; i < SysStringLen(text); ++i) {
    const auto unit = static_cast<unsigned>(text[i]);
    if (unit >= ' ' && unit < 0x7F && unit != '\\') {
      quoted += static_cast<char>(unit);
    } else {
      char escaped[16];
      std::snprintf(escaped, sizeof escaped, "\\u%04X", unit);
      quoted += escaped;
    }
  }
  return quoted + '"';
}

// words (least significant first) / 10^scale, without zeros at the end: the scale that an operation
// leaves is not published.
std::string ExactText(bool negative, std::array<std::uint32_t, 3> words, int scale) {
  std::string digits;
  while (words[0] != 0 || words[1] != 0 || words[2] != 0) {
    std::uint64_t rest = 0;
    for (int i = 2; i >= 0; --i) {
      rest = rest << 32 | words[i];
      words[i] = static_cast<std::uint32_t>(rest / 10);
      rest %= 10;
    }
    digits += static_cast<char>('0' + rest);
  }
  if (digits.empty()) return "0";
  while (digits.size() <= static_cast<std::size_t>(scale)) digits += '0';
  std::reverse(digits.begin(), digits.end());
  if (scale > 0) {
    digits.insert(digits.size() - static_cast<std::size_t>(scale), 1, '.');
    digits.erase(digits.find_last_not_of('0') + 1);
    if (digits.back() == '.') digits.pop_back();
  }
  return (negative ? "-" : "") + digits;
}

std::string DecimalText(const DECIMAL& value) {
  if (value.scale > 28) return "scale " + NumberText(int{value.scale});
  return ExactText(value.sign != 0,
                   {static_cast<std::uint32_t>(value.Lo32), static_cast<std::uint32_t>(value.Mid32),
                    static_cast<std::uint32_t>(value.Hi32)},
                   value.scale);
}

std::string BytesText(SAFEARRAY* array) {
  LONG least = 0;
  LONG most = -1;
  if (FAILED(SafeArrayGetLBound(array, 1, &least))) return "?";
  SafeArrayGetUBound(array, 1, &most);
  std::string text = NumberText(least) + ".." + NumberText(most);
  for (LONG i = least; i <= most; ++i) {
    BYTE byte = 0;
    SafeArrayGetElement(array, &i, &byte);
    text += " " + HexText(byte);
  }
  return text;
}

// What the default property of an object holds.
std::string PropertyText(IDispatch* object) {
  if (object == nullptr) return "null";
  DISPPARAMS none = {};
  VARIANT property = {};
  if (FAILED(object->Invoke(DISPID_VALUE, IID_NULL, LOCALE_INVARIANT, DISPATCH_PROPERTYGET, &none,
                            &property, nullptr, nullptr))) {
    return "?";
  }
  const std::string text = Describe(property);
  VariantClear(&property);
  return text;
}

std::string CurrencyText(std::int64_t value) {
  const auto bits = static_cast<std::uint64_t>(value);
  const std::uint64_t magnitude = value < 0 ? 0 - bits : bits;
  return ExactText(
      value < 0,
      {static_cast<std::uint32_t>(magnitude), static_cast<std::uint32_t>(magnitude >> 32), 0}, 4);
}

}  // namespace

std::string HexText(unsigned value) {
  char text[16];
  std::snprintf(text, sizeof text, "%X", value);
  return text;
}

std::string NameOf(VARTYPE type) {
  std::string name;
  if (type & VT_BYREF) name += '&';
  if (type & VT_ARRAY) name += "array of ";
  for (const auto& known : kTypeNames) {
    if (known.type == (type & ~(VT_BYREF | VT_ARRAY))) return name + known.name;
  }
  return name + "type " + NumberText(type & ~(VT_BYREF | VT_ARRAY));
}

std::string NameOf(HRESULT code) {
  for (const auto& known : kCodeNames) {
    if (known.code == code) return known.name;
  }
  return HexText(static_cast<std::uint32_t>(code));
}

std::string Describe(const VARIANT& value) {
  const std::string name = NameOf(value.vt);
  if (value.vt & VT_BYREF) {
    VARIANT target = {};
    if (FAILED(VariantCopyInd(&target, &value))) return name + ":?";
    const std::string text = Describe(target);
    VariantClear(&target);
    return "&" + text;
  }
  if (value.vt == (VT_ARRAY | VT_UI1)) return name + ":" + BytesText(value.parray);
  if (value.vt & VT_ARRAY) return name;
  if (value.vt == VT_DISPATCH) return name + ":" + PropertyText(value.pdispVal);
  switch (value.vt) {
    case VT_I1:
      return name + ":" + NumberText(static_cast<signed char>(value.cVal));
    case VT_UI1:
      return name + ":" + NumberText(value.bVal);
    case VT_I2:
    case VT_BOOL:
      return name + ":" + NumberText(value.iVal);
    case VT_UI2:
      return name + ":" + NumberText(value.uiVal);
    case VT_I4:
    case VT_INT:
      return name + ":" + NumberText(value.lVal);
    case VT_UI4:
    case VT_UINT:
      return name + ":" + NumberText(value.ulVal);
    case VT_I8:
      return name + ":" + NumberText(value.llVal);
    case VT_CY:
      return name + ":" + CurrencyText(value.cyVal.int64);
    case VT_UI8:
      return name + ":" + NumberText(value.ullVal);
    case VT_R4:
      return name + ":" + NumberText(value.fltVal);
    case VT_R8:
    case VT_DATE:
      return name + ":" + NumberText(value.dblVal);
    case VT_BSTR:
      return name + ":" + QuotedText(value.bstrVal);
    case VT_DECIMAL:
      return name + ":" + DecimalText(value.decVal);
    case VT_ERROR:
      return name + ":" + HexText(static_cast<std::uint32_t>(value.scode));
    default:
      return name;
  }
}

void Print(const std::string& line) {
  std::fputs(line.c_str(), stdout);
  std::fputc('\n', stdout);
}

}  // namespace vela::grid

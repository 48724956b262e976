// Automation values from numbers and texts, and back.
#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <utf8.h>

#include "frame/interface/automation_values.h"
#include "frame/interface/missing_value.h"
#include "frame/interface/status.h"
#include "platform/com_variant.h"

namespace {

int ReadParts(SAFEARRAY* array, std::span<double> parts) {
  VARTYPE type = VT_EMPTY;
  LONG lower = 0, upper = -1;
  if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
      FAILED(SafeArrayGetLBound(array, 1, &lower)) ||
      FAILED(SafeArrayGetUBound(array, 1, &upper))) {
    return status::kBadValue;
  }
  const auto count = std::min<std::int64_t>(std::int64_t{upper} - lower + 1,
                                            static_cast<std::int64_t>(parts.size()));
  for (std::int64_t i = 0; i < count; ++i) {
    auto index = static_cast<LONG>(lower + i);
    CComVariant element;
    // A variant is copied over one, any other element behind the type.
    void* const target = type == VT_VARIANT   ? static_cast<void*>(&element)
                         : type == VT_DECIMAL ? static_cast<void*>(&element.decVal)
                                              : &element.llVal;
    if (FAILED(SafeArrayGetElement(array, &index, target))) return status::kBadValue;
    if (type != VT_VARIANT) element.vt = type;
    parts[static_cast<std::size_t>(i)] = DoubleOfVariant(element);
  }
  return status::kOk;
}

}  // namespace

int NumberOfVariant(const VARIANT& value, VariantNumber& number) {
  CComVariant own;
  if (FAILED(VariantCopyInd(&own, &value))) return status::kBadValue;
  const auto convert = [&](VARTYPE type) { return SUCCEEDED(own.ChangeType(type)); };
  switch (own.vt) {
    case VT_EMPTY:
    case VT_NULL:
    case VT_ERROR:
      number = kMissingValue;
      return status::kOk;
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_I8:
    case VT_INT:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
    case VT_UINT:
    case VT_BOOL:
      if (!convert(VT_I8)) return status::kBadValue;
      number = static_cast<std::int64_t>(own.llVal);
      return status::kOk;
    case VT_UI8:
      number = static_cast<std::uint64_t>(own.ullVal);
      return status::kOk;
    case VT_BSTR:
      number = convert(VT_R8) ? own.dblVal : kMissingValue;
      return status::kOk;
    case VT_R4:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_DECIMAL:
      if (!convert(VT_R8)) return status::kBadValue;
      number = own.dblVal;
      return status::kOk;
    default:
      return status::kBadValue;
  }
}

double DoubleOfVariant(const VARIANT& value) {
  VariantNumber number;
  if (NumberOfVariant(value, number) != status::kOk) return kMissingValue;
  return std::visit([](auto n) { return static_cast<double>(n); }, number);
}

int PartsOfVariant(const VARIANT& value, std::span<double> parts) {
  if (SAFEARRAY* const array = ArrayIn(value)) return ReadParts(array, parts);
  VariantNumber number;
  if (const int code = NumberOfVariant(value, number)) return code;
  if (!parts.empty()) {
    parts[0] = std::visit([](auto n) { return static_cast<double>(n); }, number);
  }
  return status::kOk;
}

int VariantOfText(const char* text, VARIANT& value) try {
  const std::string valid = utf8::replace_invalid(std::string(text ? text : ""));
  std::u16string units;
  utf8::utf8to16(valid.begin(), valid.end(), std::back_inserter(units));
  value.bstrVal = SysAllocStringLen(reinterpret_cast<const OLECHAR*>(units.data()),
                                    static_cast<UINT>(units.size()));
  if (!value.bstrVal) return status::kCannotResize;
  value.vt = VT_BSTR;
  return status::kOk;
} catch (const std::bad_alloc&) {
  return status::kCannotResize;
}

int VariantOfParts(std::span<const double> parts, VARIANT& value) {
  SAFEARRAY* const array = SafeArrayCreateVector(VT_R8, 0, static_cast<ULONG>(parts.size()));
  void* data = nullptr;
  if (!array || FAILED(SafeArrayAccessData(array, &data))) {
    SafeArrayDestroy(array);
    return status::kCannotResize;
  }
  std::copy(parts.begin(), parts.end(), static_cast<double*>(data));
  SafeArrayUnaccessData(array);
  value.vt = VT_ARRAY | VT_R8;
  value.parray = array;
  return status::kOk;
}

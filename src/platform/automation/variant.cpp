// Texts of automation and the values that hold them.
#if !defined(_WIN32)

#include <cstdlib>
#include <limits>
#include <string>

#include "platform/automation.h"
#include "platform/automation/value_types.h"

using vela::platform::FindValueType;
using vela::platform::IsVariantType;

namespace {

// The length lies in the second half, so that the text itself is aligned like a pointer.
struct TextPrefix {
  std::uint32_t padding;
  std::uint32_t bytes;
};

TextPrefix* TextPrefixOf(BSTR text) { return reinterpret_cast<TextPrefix*>(text) - 1; }

BSTR Allocate(const void* bytes, std::uint64_t size) {
  // A whole unit of zeros ends the text, at an odd size too.
  const std::uint64_t total = sizeof(TextPrefix) + size + 2 * sizeof(OLECHAR);
  if (total > std::numeric_limits<std::uint32_t>::max()) return nullptr;
  auto* prefix = static_cast<TextPrefix*>(std::malloc(total));
  if (prefix == nullptr) return nullptr;
  *prefix = {0, static_cast<std::uint32_t>(size)};
  char* text = reinterpret_cast<char*>(prefix + 1);
  if (bytes != nullptr) std::memcpy(text, bytes, size);
  std::memset(text + size, 0, 2 * sizeof(OLECHAR));
  return reinterpret_cast<BSTR>(text);
}

// Gives the bytes that value shares with its source an owner of their own.
HRESULT OwnContent(VARIANT* value) {
  if (value->vt & VT_BYREF) return S_OK;
  if (value->vt & VT_ARRAY) return SafeArrayCopy(value->parray, &value->parray);
  switch (value->vt) {
    case VT_BSTR:
      value->bstrVal = SysAllocStringByteLen(reinterpret_cast<const char*>(value->bstrVal),
                                             SysStringByteLen(value->bstrVal));
      return value->bstrVal == nullptr ? E_OUTOFMEMORY : S_OK;
    case VT_DISPATCH:
    case VT_UNKNOWN:
      if (value->punkVal != nullptr) value->punkVal->AddRef();
      return S_OK;
    case VT_RECORD:
      return value->pvRecord == nullptr ? S_OK : E_NOTIMPL;
    default:
      return S_OK;
  }
}

// What a VT_BYREF value points at, still owned by where it lies.
HRESULT Dereference(const VARIANT& source, VARIANT& target) {
  const VARTYPE type = source.vt & static_cast<VARTYPE>(~VT_BYREF);
  if (source.byref == nullptr) return E_INVALIDARG;
  target = {};
  if (type == VT_DECIMAL) {
    target.decVal = *source.pdecVal;
    target.vt = type;
    return S_OK;
  }
  target.vt = type;
  if (type & VT_ARRAY) {
    target.parray = *source.pparray;
    return S_OK;
  }
  const auto* known = FindValueType(type);
  if (known == nullptr || known->bytes == 0 || known->bytes > sizeof target.llVal) {
    return E_INVALIDARG;
  }
  std::memcpy(&target.llVal, source.byref, known->bytes);
  return S_OK;
}

}  // namespace

BSTR SysAllocString(const OLECHAR* text) {
  if (text == nullptr) return nullptr;
  return Allocate(text, std::char_traits<OLECHAR>::length(text) * sizeof(OLECHAR));
}

BSTR SysAllocStringLen(const OLECHAR* text, UINT length) {
  return Allocate(text, std::uint64_t{length} * sizeof(OLECHAR));
}

BSTR SysAllocStringByteLen(const char* bytes, UINT size) { return Allocate(bytes, size); }

void SysFreeString(BSTR text) {
  if (text != nullptr) std::free(TextPrefixOf(text));
}

UINT SysStringByteLen(BSTR text) { return text == nullptr ? 0 : TextPrefixOf(text)->bytes; }

UINT SysStringLen(BSTR text) { return SysStringByteLen(text) / sizeof(OLECHAR); }

void VariantInit(VARIANT* value) { *value = {}; }

HRESULT VariantClear(VARIANT* value) {
  if (value == nullptr) return E_INVALIDARG;
  if (!IsVariantType(value->vt)) return DISP_E_BADVARTYPE;
  if (!(value->vt & VT_BYREF)) {
    if (value->vt & VT_ARRAY) {
      const HRESULT result = SafeArrayDestroy(value->parray);
      if (FAILED(result)) return result;
    } else if (value->vt == VT_BSTR) {
      SysFreeString(value->bstrVal);
    } else if ((value->vt == VT_DISPATCH || value->vt == VT_UNKNOWN) && value->punkVal != nullptr) {
      value->punkVal->Release();
    }
  }
  value->vt = VT_EMPTY;
  return S_OK;
}

HRESULT VariantCopy(VARIANT* destination, const VARIANT* source) {
  if (destination == nullptr || source == nullptr) return E_INVALIDARG;
  if (!IsVariantType(source->vt)) return DISP_E_BADVARTYPE;
  if (destination == source) return S_OK;
  HRESULT result = VariantClear(destination);
  if (FAILED(result)) return result;
  *destination = *source;
  result = OwnContent(destination);
  if (FAILED(result)) destination->vt = VT_EMPTY;
  return result;
}

HRESULT VariantCopyInd(VARIANT* destination, const VARIANT* source) {
  if (destination == nullptr || source == nullptr) return E_INVALIDARG;
  if (!IsVariantType(source->vt)) return DISP_E_BADVARTYPE;
  const VARIANT* target = source;
  if (target->vt == (VT_BYREF | VT_VARIANT)) {
    target = target->pvarVal;
    // A reference to a reference to a value is one level too many.
    if (target == nullptr || target->vt == (VT_BYREF | VT_VARIANT)) return E_INVALIDARG;
    if (!IsVariantType(target->vt)) return DISP_E_BADVARTYPE;
  }
  // The copy is made before destination is cleared, which may own what source refers to.
  VARIANT shared = *target;
  if (target->vt & VT_BYREF) {
    const HRESULT result = Dereference(*target, shared);
    if (FAILED(result)) return result;
  } else if (target == destination) {
    return S_OK;
  }
  VARIANT copy = shared;
  HRESULT result = OwnContent(&copy);
  if (FAILED(result)) return result;
  result = VariantClear(destination);
  if (FAILED(result)) {
    VariantClear(&copy);
    return result;
  }
  *destination = copy;
  return S_OK;
}

#endif

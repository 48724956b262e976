// An automation value that owns what it holds.
#pragma once

#include <utility>

#include "platform/automation.h"

// The array of a value that holds or refers to one, else null.
inline SAFEARRAY* ArrayIn(const VARIANT& value) {
  if ((value.vt & VT_ARRAY) == 0) return nullptr;
  if ((value.vt & VT_BYREF) == 0) return value.parray;
  return value.pparray != nullptr ? *value.pparray : nullptr;
}

// A failed automation call, thrown.
struct AutomationError {
  HRESULT code;
};

// Empty to start with; clears itself. A copy that fails leaves VT_ERROR with the failure's code and
// throws AutomationError.
struct CComVariant : VARIANT {
  CComVariant() { VariantInit(this); }
  CComVariant(const VARIANT& value) : CComVariant() { Copy(value); }
  CComVariant(const CComVariant& other) : CComVariant(static_cast<const VARIANT&>(other)) {}
  CComVariant(CComVariant&& other) noexcept : VARIANT(other) { VariantInit(&other); }
  ~CComVariant() { VariantClear(this); }

  CComVariant& operator=(const VARIANT& value) {
    Copy(value);
    return *this;
  }
  CComVariant& operator=(const CComVariant& other) {
    return *this = static_cast<const VARIANT&>(other);
  }
  CComVariant& operator=(CComVariant&& other) noexcept {
    std::swap(static_cast<VARIANT&>(*this), static_cast<VARIANT&>(other));
    return *this;
  }

  void Clear() { Check(VariantClear(this)); }
  // Hands the value over to the caller.
  VARIANT Detach() {
    const VARIANT value = *this;
    VariantInit(this);
    return value;
  }
  // Converts in place; on failure the value stays.
  HRESULT ChangeType(VARTYPE type) { return VariantChangeType(this, this, 0, type); }

  static void Check(HRESULT result) {
    if (FAILED(result)) throw AutomationError{result};
  }

 private:
  void Copy(const VARIANT& value) {
    const HRESULT result = VariantCopy(this, &value);
    if (SUCCEEDED(result)) return;
    VariantClear(this);
    vt = VT_ERROR;
    scode = result;
    throw AutomationError{result};
  }
};

// Conversion of a value that is no reference: what VariantChangeType and arithmetic share.
#pragma once

#if !defined(_WIN32)

#include "platform/automation.h"

namespace vela::platform {

// Makes value (which owns nothing before) source as another type. Codes as VariantChangeType.
HRESULT Convert(const VARIANT& source, USHORT flags, VARTYPE type, VARIANT& value);
// The default property of the object that source holds; DISP_E_TYPEMISMATCH where it has none.
HRESULT ReadDefaultProperty(const VARIANT& source, VARIANT& value);

// Clears itself.
class OwnedValue {
 public:
  OwnedValue() = default;
  OwnedValue(const OwnedValue&) = delete;
  OwnedValue& operator=(const OwnedValue&) = delete;
  ~OwnedValue() { VariantClear(&value_); }

  VARIANT& operator*() { return value_; }
  VARIANT* operator->() { return &value_; }
  // Leaves this empty and replaces what destination holds; destination keeps it on failure.
  HRESULT MoveTo(VARIANT& destination) {
    const HRESULT result = VariantClear(&destination);
    if (FAILED(result)) return result;
    destination = value_;
    value_ = {};
    return S_OK;
  }

 private:
  VARIANT value_ = {};
};

}  // namespace vela::platform

#endif

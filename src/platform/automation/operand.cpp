#include "platform/automation/operand.h"

#if !defined(_WIN32)

namespace vela::platform {

HRESULT Operand::Read(VARIANT* source) {
  value_ = source;
  if (source->vt != VT_DISPATCH) return S_OK;
  value_ = &*property_;
  return ReadDefaultProperty(*source, *property_);
}

Rank RankOf(VARTYPE type) {
  switch (type) {
    case VT_EMPTY:
      return Rank::kEmpty;
    case VT_UI1:
      return Rank::kByte;
    case VT_I2:
    case VT_BOOL:
      return Rank::kShort;
    case VT_I4:
      return Rank::kLong;
    case VT_I8:
      return Rank::kHuge;
    case VT_R4:
      return Rank::kSingle;
    case VT_R8:
      return Rank::kDouble;
    case VT_BSTR:
      return Rank::kText;
    case VT_CY:
      return Rank::kCurrency;
    case VT_DATE:
      return Rank::kDate;
    case VT_DECIMAL:
      return Rank::kDecimal;
    case VT_NULL:
      return Rank::kNull;
    case VT_I1:
    case VT_UI2:
    case VT_UI4:
    case VT_UI8:
    case VT_INT:
    case VT_UINT:
      return Rank::kOther;
    default:
      return Rank::kNone;
  }
}

}  // namespace vela::platform

#endif

// VarCmp: numbers compare as numbers, whatever their types, and lie before every text.
#if !defined(_WIN32)

#include <algorithm>

#include "platform/automation/number.h"
#include "platform/automation/operand.h"

namespace vela::platform {
namespace {

HRESULT Order(int order) { return order < 0 ? VARCMP_LT : order > 0 ? VARCMP_GT : VARCMP_EQ; }

HRESULT CompareReals(double left, double right) {
  // NaN lies behind everything.
  return left < right ? VARCMP_LT : left == right ? VARCMP_EQ : VARCMP_GT;
}

HRESULT CompareTexts(const VARIANT& left, const VARIANT& right) {
  const std::u16string_view a(left.vt == VT_BSTR ? left.bstrVal : nullptr,
                              left.vt == VT_BSTR ? SysStringLen(left.bstrVal) : 0);
  const std::u16string_view b(right.vt == VT_BSTR ? right.bstrVal : nullptr,
                              right.vt == VT_BSTR ? SysStringLen(right.bstrVal) : 0);
  return Order(a.compare(b));
}

HRESULT CompareNumbers(const VARIANT& left, const VARIANT& right) {
  Number a;
  Number b;
  HRESULT code = ReadNumber(left, a);
  if (SUCCEEDED(code)) code = ReadNumber(right, b);
  if (FAILED(code)) return code;
  if (left.vt == VT_R4 || right.vt == VT_R4) {
    // No better than the operand that knows its number to 24 bits.
    return CompareReals(static_cast<float>(ToReal(a)), static_cast<float>(ToReal(b)));
  }
  const auto* x = std::get_if<ExactNumber>(&a);
  const auto* y = std::get_if<ExactNumber>(&b);
  if (x != nullptr && y != nullptr) return Order(Compare(*x, *y));
  return CompareReals(ToReal(a), ToReal(b));
}

HRESULT CompareOperands(const Operand& left, const Operand& right) {
  const Rank a = left.rank();
  const Rank b = right.rank();
  if (left.value().vt == VT_ERROR && right.value().vt == VT_ERROR) return VARCMP_EQ;
  if (a <= Rank::kOther || b <= Rank::kOther) return DISP_E_TYPEMISMATCH;
  if (a == Rank::kNull || b == Rank::kNull) return VARCMP_NULL;
  const bool both_texts = (a == Rank::kText || a == Rank::kEmpty) &&
                          (b == Rank::kText || b == Rank::kEmpty) && a != Rank::kEmpty;
  if (both_texts || (a == Rank::kEmpty && b == Rank::kText)) {
    return CompareTexts(left.value(), right.value());
  }
  if (a == Rank::kText) return VARCMP_GT;
  if (b == Rank::kText) return VARCMP_LT;
  return CompareNumbers(left.value(), right.value());
}

}  // namespace
}  // namespace vela::platform

HRESULT VarCmp(VARIANT* left, VARIANT* right, LCID, ULONG) {
  using vela::platform::Operand;
  if (left == nullptr || right == nullptr) return E_INVALIDARG;
  Operand a;
  Operand b;
  HRESULT code = a.Read(left);
  if (SUCCEEDED(code)) code = b.Read(right);
  return FAILED(code) ? code : vela::platform::CompareOperands(a, b);
}

#endif

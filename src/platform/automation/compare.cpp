// VarCmp: numbers compare as numbers, whatever their types, and lie before every text.
#if !defined(_WIN32)

#include <cmath>
#include <limits>

#include "platform/automation/number.h"
#include "platform/automation/operand.h"
#include "platform/automation/text_order.h"

namespace vela::platform {
namespace {

HRESULT Order(int order) { return order < 0 ? VARCMP_LT : order > 0 ? VARCMP_GT : VARCMP_EQ; }

HRESULT CompareReals(double left, double right) {
  // NaN lies behind everything.
  return left < right ? VARCMP_LT : left == right ? VARCMP_EQ : VARCMP_GT;
}

// As an operand that knows its number to 24 bits would have it.
double AsSingle(double value) {
  return std::fabs(value) > std::numeric_limits<float>::max() ? value : static_cast<float>(value);
}

// VT_EMPTY is an empty text.
std::u16string_view TextOf(const VARIANT& value) {
  if (value.vt != VT_BSTR) return {};
  return {value.bstrVal, SysStringLen(value.bstrVal)};
}

HRESULT CompareNumbers(const VARIANT& left, const VARIANT& right) {
  Number a;
  Number b;
  HRESULT code = ReadNumber(left, a);
  if (SUCCEEDED(code)) code = ReadNumber(right, b);
  if (FAILED(code)) return code;
  if (left.vt == VT_R4 || right.vt == VT_R4) {
    return CompareReals(AsSingle(ToReal(a)), AsSingle(ToReal(b)));
  }
  const auto* x = std::get_if<ExactNumber>(&a);
  const auto* y = std::get_if<ExactNumber>(&b);
  if (x != nullptr && y != nullptr) return Order(Compare(*x, *y));
  return CompareReals(ToReal(a), ToReal(b));
}

// Types that are older than the 64-bit integers mismatch, the others are unknown.
HRESULT Refusal(const VARIANT& value) {
  return value.vt <= VT_UI4 ? DISP_E_TYPEMISMATCH : DISP_E_BADVARTYPE;
}

HRESULT CompareValues(const VARIANT& left, const VARIANT& right, ULONG flags) {
  // Of the types without arithmetic, VT_INT alone is known, and on the left alone.
  const Rank a = left.vt == VT_INT ? Rank::kLong : RankOf(left.vt);
  const Rank b = RankOf(right.vt);
  if (left.vt == VT_ERROR && right.vt == VT_ERROR) return VARCMP_EQ;
  if (a <= Rank::kOther || b <= Rank::kOther) {
    const HRESULT refusal = a <= Rank::kOther ? Refusal(left) : Refusal(right);
    return b <= Rank::kOther && Refusal(right) == DISP_E_BADVARTYPE ? DISP_E_BADVARTYPE : refusal;
  }
  if (a == Rank::kNull || b == Rank::kNull) return VARCMP_NULL;
  const bool texts = a == Rank::kText || b == Rank::kText;
  const auto is_text = [](Rank rank) { return rank == Rank::kText || rank == Rank::kEmpty; };
  if (texts && is_text(a) && is_text(b)) {
    return Order(CompareTexts(TextOf(left), TextOf(right), flags));
  }
  if (texts) return a == Rank::kText ? VARCMP_GT : VARCMP_LT;
  return CompareNumbers(left, right);
}

}  // namespace
}  // namespace vela::platform

HRESULT VarCmp(VARIANT* left, VARIANT* right, LCID, ULONG flags) {
  if (left == nullptr || right == nullptr) return E_INVALIDARG;
  return vela::platform::CompareValues(*left, *right, flags);
}

#endif

#include "scalar/variant_operation.h"

#include <optional>

#include "frame/interface/operations.h"
#include "frame/interface/status.h"
#include "platform/com_variant.h"
#include "scalar/automation_entry.h"

namespace vela {
namespace {

// VARCMP_LT, VARCMP_EQ, VARCMP_GT or VARCMP_NULL; nothing where the values do not compare.
std::optional<HRESULT> Order(const VARIANT& left, const VARIANT& right) {
  const CompareEntry compare = FindCompare();
  if (compare == nullptr) return std::nullopt;
  const HRESULT order =
      compare(const_cast<VARIANT*>(&left), const_cast<VARIANT*>(&right), LOCALE_USER_DEFAULT, 0);
  return FAILED(order) ? std::nullopt : std::optional(order);
}

// Nothing where that takes a comparison that fails.
std::optional<bool> IsEqual(const VARIANT& left, const VARIANT& right) {
  if (left.vt != right.vt) return false;
  switch (left.vt) {
    case VT_EMPTY:
    case VT_NULL:
      return true;
    case VT_I1:
    case VT_UI1:
      return left.bVal == right.bVal;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return left.iVal == right.iVal;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_ERROR:
      return left.lVal == right.lVal;
    case VT_I8:
    case VT_UI8:
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return left.llVal == right.llVal;
    default:
      const auto order = Order(left, right);
      if (!order) return std::nullopt;
      return *order == VARCMP_EQ;
  }
}

// Whether the values are in this order, or equal where that is asked too.
std::optional<bool> IsOrdered(const VARIANT& left, const VARIANT& right, HRESULT order,
                              bool or_equal) {
  if (or_equal) {
    const auto equal = IsEqual(left, right);
    if (!equal || *equal) return equal;
  }
  const auto actual = Order(left, right);
  if (!actual) return std::nullopt;
  return *actual == order;
}

std::optional<AutomationEntry> ArithmeticOf(unsigned code) {
  switch (code) {
    case operation::kAdd:
      return AutomationEntry::kAdd;
    case operation::kSubtract:
      return AutomationEntry::kSubtract;
    case operation::kMultiply:
      return AutomationEntry::kMultiply;
    case operation::kDivide:
      return AutomationEntry::kDivide;
    default:
      return std::nullopt;
  }
}

}  // namespace

int OperateOnVariant(VARIANT& target, const VARIANT& source, unsigned code) {
  CComVariant operand(source);
  if (code == operation::kAssign) {
    CComVariant::Check(VariantClear(&target));
    target = operand.Detach();
    return status::kOk;
  }
  const auto entry = ArithmeticOf(code);
  if (!entry) return status::kFailed;
  const ArithmeticEntry function = FindArithmetic(*entry);
  // The result is apart from the left operand, so that what that owns is neither lost nor used
  // after it is gone.
  CComVariant result;
  if (function == nullptr || FAILED(function(&target, &operand, &result))) {
    return status::kAutomationFailed;
  }
  CComVariant::Check(VariantClear(&target));
  target = result.Detach();
  return status::kOk;
}

int CompareVariants(const VARIANT& left, const VARIANT& right, unsigned op, unsigned& flags) {
  std::optional<bool> outcome;
  switch (op) {
    case operation::kEqual:
    case operation::kNotEqual:
      outcome = IsEqual(left, right);
      if (outcome && op == operation::kNotEqual) outcome = !*outcome;
      break;
    case operation::kLess:
    case operation::kLessOrEqual:
      outcome = IsOrdered(left, right, VARCMP_LT, op == operation::kLessOrEqual);
      break;
    case operation::kGreater:
    case operation::kGreaterOrEqual:
      outcome = IsOrdered(left, right, VARCMP_GT, op == operation::kGreaterOrEqual);
      break;
    default:
      return status::kFailed;
  }
  if (!outcome) return status::kAutomationFailed;
  flags = (flags & ~operation::kCompareTrue) | (*outcome ? operation::kCompareTrue : 0);
  return status::kOk;
}

}  // namespace vela

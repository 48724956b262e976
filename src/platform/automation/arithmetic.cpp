// VarAdd, VarSub, VarMul and VarDiv: the operands' types decide the type of the result, both become
// that type, and a result that it cannot hold becomes the next larger type.
#if !defined(_WIN32)

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/automation/date.h"
#include "platform/automation/number.h"
#include "platform/automation/operand.h"

namespace vela::platform {
namespace {

__extension__ using Integer = __int128;

enum class Operation { kAdd, kSubtract, kMultiply, kDivide };

// The type of which two operands are computed.
Rank ResultRank(Operation operation, Rank left, Rank right) {
  const Rank most = std::max(left, right);
  const Rank least = std::min(left, right);
  switch (most) {
    case Rank::kOther:
    case Rank::kEmpty:
      return operation == Operation::kDivide ? Rank::kDouble : Rank::kShort;
    case Rank::kSingle:
      // Its 24 bits are too few for the others' values.
      return least == Rank::kLong || least == Rank::kHuge ? Rank::kDouble : Rank::kSingle;
    case Rank::kText:
      return Rank::kDouble;
    case Rank::kCurrency:
      if (operation == Operation::kDivide) return Rank::kDouble;
      if (operation == Operation::kMultiply && least >= Rank::kSingle && least <= Rank::kText) {
        return Rank::kDouble;
      }
      return Rank::kCurrency;
    case Rank::kDate:
      if (operation == Operation::kMultiply || operation == Operation::kDivide) {
        return Rank::kDouble;
      }
      return operation == Operation::kSubtract && least == Rank::kDate ? Rank::kDouble
                                                                       : Rank::kDate;
    case Rank::kDecimal:
    case Rank::kNull:
      return most;
    default:
      return operation == Operation::kDivide ? Rank::kDouble : most;
  }
}

double Compute(Operation operation, double left, double right) {
  switch (operation) {
    case Operation::kAdd:
      return left + right;
    case Operation::kSubtract:
      return left - right;
    case Operation::kMultiply:
      return left * right;
    default:
      return left / right;
  }
}

// Of two integers of up to 64 bits; division is never one of integers.
Integer Compute(Operation operation, Integer left, Integer right) {
  switch (operation) {
    case Operation::kAdd:
      return left + right;
    case Operation::kSubtract:
      return left - right;
    default:
      return left * right;
  }
}

HRESULT ReadAs(const VARIANT& operand, VARTYPE type, VARIANT& value) {
  return Convert(operand, 0, type, value);
}

// The integer as the first of the types from rank on that holds it, else a double.
void StoreInteger(Integer number, Rank rank, VARIANT& result) {
  const struct {
    Rank rank;
    VARTYPE type;
    std::int64_t least;
    std::int64_t most;
  } types[] = {{Rank::kByte, VT_UI1, 0, 0xFF},
               {Rank::kShort, VT_I2, -0x8000, 0x7FFF},
               {Rank::kLong, VT_I4, -0x80000000LL, 0x7FFFFFFF},
               {Rank::kHuge, VT_I8, std::numeric_limits<std::int64_t>::min(),
                std::numeric_limits<std::int64_t>::max()}};
  for (const auto& type : types) {
    // A 64-bit result comes from 64-bit operands only.
    if (type.rank < rank || (type.rank == Rank::kHuge && rank != Rank::kHuge)) continue;
    if (number < type.least || number > type.most) continue;
    result.vt = type.type;
    result.llVal = static_cast<LONGLONG>(number);
    return;
  }
  result.vt = VT_R8;
  result.dblVal = static_cast<double>(number);
}

// Both as numbers of a type, which own nothing.
HRESULT ReadBoth(const VARIANT& left, const VARIANT& right, VARTYPE type, VARIANT& a, VARIANT& b) {
  const HRESULT code = ReadAs(left, type, a);
  return FAILED(code) ? code : ReadAs(right, type, b);
}

HRESULT OperateOnIntegers(Operation operation, Rank rank, const VARIANT& left, const VARIANT& right,
                          VARIANT& result) {
  VARIANT a = {};
  VARIANT b = {};
  const HRESULT code = ReadBoth(left, right, VT_I8, a, b);
  if (FAILED(code)) return code;
  StoreInteger(Compute(operation, Integer{a.llVal}, Integer{b.llVal}), rank, result);
  return S_OK;
}

HRESULT OperateOnReals(Operation operation, Rank rank, const VARIANT& left, const VARIANT& right,
                       VARIANT& result) {
  VARIANT a = {};
  VARIANT b = {};
  const HRESULT code = ReadBoth(left, right, VT_R8, a, b);
  if (FAILED(code)) return code;
  if (operation == Operation::kDivide && b.dblVal == 0) {
    return a.dblVal == 0 ? DISP_E_OVERFLOW : DISP_E_DIVBYZERO;
  }
  const double number = Compute(operation, a.dblVal, b.dblVal);
  if (rank == Rank::kSingle && !(std::fabs(number) > std::numeric_limits<float>::max())) {
    result.vt = VT_R4;
    result.fltVal = static_cast<float>(number);
    return S_OK;
  }
  result.vt = rank == Rank::kDate && IsDate(number) ? VT_DATE : VT_R8;
  result.dblVal = number;
  return S_OK;
}

HRESULT OperateOnExact(Operation operation, VARTYPE type, const VARIANT& left, const VARIANT& right,
                       VARIANT& result) {
  VARIANT a = {};
  VARIANT b = {};
  HRESULT code = ReadBoth(left, right, type, a, b);
  Number left_number;
  Number right_number;
  if (SUCCEEDED(code)) code = ReadNumber(a, left_number);
  if (SUCCEEDED(code)) code = ReadNumber(b, right_number);
  if (FAILED(code)) return code;
  const auto& x = std::get<ExactNumber>(left_number);
  const auto& y = std::get<ExactNumber>(right_number);
  std::optional<ExactNumber> number;
  switch (operation) {
    case Operation::kAdd:
      number = Add(x, y);
      break;
    case Operation::kSubtract:
      number = Add(x, Negate(y));
      break;
    case Operation::kMultiply:
      number = Multiply(x, y);
      break;
    case Operation::kDivide:
      if (y.magnitude == 0) return DISP_E_DIVBYZERO;
      number = Divide(x, y);
      break;
  }
  return number ? WriteNumber(*number, type, result) : DISP_E_OVERFLOW;
}

HRESULT Concatenate(const VARIANT& left, const VARIANT& right, VARIANT& result) {
  const UINT first = left.vt == VT_BSTR ? SysStringLen(left.bstrVal) : 0;
  const UINT second = right.vt == VT_BSTR ? SysStringLen(right.bstrVal) : 0;
  if (second > std::numeric_limits<UINT>::max() - first) return E_OUTOFMEMORY;
  const BSTR text = SysAllocStringLen(nullptr, first + second);
  if (text == nullptr) return E_OUTOFMEMORY;
  std::copy_n(left.bstrVal, first, text);
  std::copy_n(right.bstrVal, second, text + first);
  result.vt = VT_BSTR;
  result.bstrVal = text;
  return S_OK;
}

bool Takes(Operation operation, Rank rank) {
  return rank > Rank::kOther || (rank == Rank::kOther && operation == Operation::kDivide);
}

HRESULT Compute(Operation operation, const Operand& left, const Operand& right, VARIANT& result) {
  if (!Takes(operation, left.rank()) || !Takes(operation, right.rank())) return DISP_E_BADVARTYPE;
  const Rank rank = ResultRank(operation, left.rank(), right.rank());
  if (rank == Rank::kNull) {
    result.vt = VT_NULL;
    return S_OK;
  }
  if (operation == Operation::kDivide && right.rank() == Rank::kEmpty) return DISP_E_BADVARTYPE;
  const bool text = left.rank() == Rank::kText || right.rank() == Rank::kText;
  const bool only_text =
      std::min(left.rank(), right.rank()) == Rank::kEmpty || left.rank() == right.rank();
  if (operation == Operation::kAdd && text && only_text) {
    return Concatenate(left.value(), right.value(), result);
  }
  switch (rank) {
    case Rank::kSingle:
    case Rank::kDouble:
    case Rank::kDate:
      return OperateOnReals(operation, rank, left.value(), right.value(), result);
    case Rank::kCurrency:
      return OperateOnExact(operation, VT_CY, left.value(), right.value(), result);
    case Rank::kDecimal:
      return OperateOnExact(operation, VT_DECIMAL, left.value(), right.value(), result);
    default:
      return OperateOnIntegers(operation, rank, left.value(), right.value(), result);
  }
}

HRESULT Operate(Operation operation, VARIANT* left, VARIANT* right, VARIANT* result) {
  if (left == nullptr || right == nullptr || result == nullptr) return E_INVALIDARG;
  Operand a;
  Operand b;
  HRESULT code = a.Read(left);
  if (SUCCEEDED(code)) code = b.Read(right);
  OwnedValue computed;
  if (SUCCEEDED(code)) code = Compute(operation, a, b, *computed);
  return FAILED(code) ? code : computed.MoveTo(*result);
}

}  // namespace
}  // namespace vela::platform

HRESULT VarAdd(VARIANT* left, VARIANT* right, VARIANT* result) {
  return vela::platform::Operate(vela::platform::Operation::kAdd, left, right, result);
}

HRESULT VarSub(VARIANT* left, VARIANT* right, VARIANT* result) {
  return vela::platform::Operate(vela::platform::Operation::kSubtract, left, right, result);
}

HRESULT VarMul(VARIANT* left, VARIANT* right, VARIANT* result) {
  return vela::platform::Operate(vela::platform::Operation::kMultiply, left, right, result);
}

HRESULT VarDiv(VARIANT* left, VARIANT* right, VARIANT* result) {
  return vela::platform::Operate(vela::platform::Operation::kDivide, left, right, result);
}

#endif

#include "frame/element_operation.h"

#include <cmath>

#include "frame/interface/missing_value.h"

namespace vela {
namespace {

constexpr OneTCcomplex kMissingComplex{kMissingValue, kMissingValue};

bool IsUnusable(double part) { return part == kMissingValue || std::isnan(part); }
bool IsUnusable(const OneTCcomplex& z) { return IsUnusable(z.m_re) || IsUnusable(z.m_im); }

OneTCcomplex FiniteOrMissing(const OneTCcomplex& z) {
  return std::isfinite(z.m_re) && std::isfinite(z.m_im) ? z : kMissingComplex;
}

}  // namespace

void ApplyOperation(unsigned code, OneTCcomplex& x, const OneTCcomplex& y, bool guard_multiply) {
  if (code == operation::kAssign) {
    x = {IsUnusable(y.m_re) ? kMissingValue : y.m_re, IsUnusable(y.m_im) ? kMissingValue : y.m_im};
    return;
  }
  if (IsUnusable(x) || IsUnusable(y)) {
    x = kMissingComplex;
    return;
  }
  switch (code) {
    case operation::kAdd:
      x += y;
      break;
    case operation::kSubtract:
      x = x - y;
      break;
    case operation::kMultiply:
      x = guard_multiply ? FiniteOrMissing(x * y) : x * y;
      break;
    case operation::kDivide:
      x = FiniteOrMissing(x / y);
      break;
    default:
      x = FiniteOrMissing(x ^ y);
      break;
  }
}

}  // namespace vela

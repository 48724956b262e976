#include "tesselc/compile/constant_expression.h"

#include <algorithm>

namespace tesselc {
namespace {

struct Checker {
  template <class T>
  bool operator()(const T&) const {
    return false;
  }
  bool operator()(const IntLiteral&) const { return true; }
  bool operator()(const CharLiteral&) const { return true; }
  bool operator()(const ScopedName&) const { return true; }
  bool operator()(const Unary& unary) const {
    switch (unary.op) {
      case UnaryOperator::kPlus:
      case UnaryOperator::kMinus:
      case UnaryOperator::kNot:
      case UnaryOperator::kComplement:
        return IsConstantExpression(*unary.operand);
      default:
        return false;
    }
  }
  bool operator()(const Binary& binary) const {
    // What can fail when it is computed is left alone.
    const auto safe = [](const Binary::Link& link) {
      return (link.op == BinaryOperator::kAdd || link.op == BinaryOperator::kSubtract ||
              link.op == BinaryOperator::kMultiply || link.op == BinaryOperator::kBitOr ||
              link.op == BinaryOperator::kBitAnd) &&
             IsConstantExpression(*link.operand);
    };
    return IsConstantExpression(*binary.first) && std::ranges::all_of(binary.rest, safe);
  }
};

}  // namespace

bool IsConstantExpression(const Expression& expression) {
  return std::visit(Checker(), expression.node);
}

}  // namespace tesselc

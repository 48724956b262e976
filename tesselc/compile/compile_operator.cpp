#include "tesselc/compile/compiler.h"
#include "tesselc/run/objects.h"
#include "tesselc/run/text.h"

namespace tesselc {
namespace {

bool IsComparison(BinaryOperator op) {
  switch (op) {
    case BinaryOperator::kLess:
    case BinaryOperator::kLessEqual:
    case BinaryOperator::kGreater:
    case BinaryOperator::kGreaterEqual:
    case BinaryOperator::kEqual:
    case BinaryOperator::kNotEqual:
      return true;
    default:
      return false;
  }
}

const char* Spelling(BinaryOperator op) {
  switch (op) {
    case BinaryOperator::kPower:
      return "^";
    case BinaryOperator::kMultiply:
      return "*";
    case BinaryOperator::kDivide:
      return "/";
    case BinaryOperator::kRemainder:
      return "%";
    case BinaryOperator::kAdd:
      return "+";
    case BinaryOperator::kSubtract:
      return "-";
    case BinaryOperator::kShiftLeft:
      return "<<";
    case BinaryOperator::kShiftRight:
      return ">>";
    case BinaryOperator::kLess:
      return "<";
    case BinaryOperator::kLessEqual:
      return "<=";
    case BinaryOperator::kGreater:
      return ">";
    case BinaryOperator::kGreaterEqual:
      return ">=";
    case BinaryOperator::kEqual:
      return "==";
    case BinaryOperator::kNotEqual:
      return "!=";
    case BinaryOperator::kBitAnd:
      return "&";
    case BinaryOperator::kBitOr:
      return "|";
    case BinaryOperator::kLogicalAnd:
      return "&&";
    case BinaryOperator::kLogicalOr:
      return "||";
    case BinaryOperator::kComma:
      return ",";
  }
  return "";
}

unsigned ComparisonCode(BinaryOperator op) {
  switch (op) {
    case BinaryOperator::kLess:
      return operation::kLess;
    case BinaryOperator::kLessEqual:
      return operation::kLessOrEqual;
    case BinaryOperator::kGreater:
      return operation::kGreater;
    case BinaryOperator::kGreaterEqual:
      return operation::kGreaterOrEqual;
    case BinaryOperator::kEqual:
      return operation::kEqual;
    default:
      return operation::kNotEqual;
  }
}

[[noreturn]] void FailOperands(BinaryOperator op, const StaticType& left, const StaticType& right,
                               const SourceRange& range) {
  throw ScriptMistake(range, std::string("operator ") + Spelling(op) + " cannot be applied to " +
                                 Spelling(left) + " and " + Spelling(right));
}

bool IsNumberOrComplex(const StaticType& type) { return type.IsNumber() || type.IsComplex(); }
bool IsTextual(const StaticType& type) {
  return type.IsString() || (type.name == TypeName::kChar && !type.is_array);
}
bool HasOperators(const StaticType& type) { return type.IsContainer() || type.IsVariant(); }

}  // namespace

unsigned Compiler::OperationCode(BinaryOperator op) {
  switch (op) {
    case BinaryOperator::kAdd:
      return operation::kAdd;
    case BinaryOperator::kSubtract:
      return operation::kSubtract;
    case BinaryOperator::kMultiply:
      return operation::kMultiply;
    case BinaryOperator::kDivide:
      return operation::kDivide;
    case BinaryOperator::kPower:
      return operation::kPower;
    default:
      return 0;
  }
}

Value Compiler::Combine(BinaryOperator op, Value left, Value right, const SourceRange& range) {
  const StaticType& l = left.type;
  const StaticType& r = right.type;
  if (l.is_null && r.IsInteger()) left = Convert(std::move(left), r, range);
  if (r.is_null && l.IsInteger()) right = Convert(std::move(right), l, range);
  if (l.IsNumber() && r.IsNumber()) {
    return CombineNumbers(op, std::move(left), std::move(right), range);
  }
  if ((l.IsString() && IsTextual(r)) || (r.IsString() && IsTextual(l))) {
    return CombineTexts(op, std::move(left), std::move(right), range);
  }
  if (HasOperators(l) || HasOperators(r)) {
    return CombineObjects(op, std::move(left), std::move(right), range);
  }
  if (IsNumberOrComplex(l) && IsNumberOrComplex(r)) {
    return CombineComplex(op, std::move(left), std::move(right), range);
  }
  if (l.IsPoint() && r.IsPoint()) {
    return CombinePoints(op, std::move(left), std::move(right), range);
  }
  FailOperands(op, l, r, range);
}

Value Compiler::CombineNumbers(BinaryOperator op, Value left, Value right,
                               const SourceRange& range) {
  const TypeName l = left.type.name;
  const TypeName r = right.type.name;
  if (op == BinaryOperator::kPower) {
    NodePtr base = ToNumber(std::move(left), TypeName::kDouble, range);
    NodePtr exponent = ToNumber(std::move(right), TypeName::kDouble, range);
    return MakeValue(TypeName::kDouble,
                     MakePower(options_.power, std::move(base), std::move(exponent)));
  }
  const bool shift = op == BinaryOperator::kShiftLeft || op == BinaryOperator::kShiftRight;
  const bool bits = op == BinaryOperator::kBitAnd || op == BinaryOperator::kBitOr;
  if ((shift || bits) && !(IsInteger(l) && IsInteger(r))) {
    FailOperands(op, left.type, right.type, range);
  }
  const TypeName type = shift ? Promoted(l) : CommonNumber(l, r);
  NodePtr a = MakeConversion(l, type, std::move(left.node));
  NodePtr b = MakeConversion(r, shift ? TypeName::kInt64 : type, std::move(right.node));
  if (shift) return MakeValue(type, MakeShift(op, type, std::move(a), std::move(b), range));
  if (IsComparison(op)) {
    return MakeValue(TypeName::kInt, MakeComparison(op, type, std::move(a), std::move(b)));
  }
  return MakeValue(type, MakeArithmetic(op, type, std::move(a), std::move(b), range));
}

Value Compiler::CombineComplex(BinaryOperator op, Value left, Value right,
                               const SourceRange& range) {
  const StaticType l = left.type, r = right.type;
  NodePtr a = MakeConversion(l.name, TypeName::kComplex, std::move(left.node));
  NodePtr b = MakeConversion(r.name, TypeName::kComplex, std::move(right.node));
  if (IsComparison(op)) {
    return MakeValue(TypeName::kInt,
                     MakeComparison(op, TypeName::kComplex, std::move(a), std::move(b)));
  }
  if (OperationCode(op) == 0) FailOperands(op, l, r, range);
  return MakeValue(TypeName::kComplex,
                   MakeComplexArithmetic(OperationCode(op), std::move(a), std::move(b), range));
}

Value Compiler::CombinePoints(BinaryOperator op, Value left, Value right,
                              const SourceRange& range) {
  const StaticType l = left.type, r = right.type;
  // Two of different types meet in the one that holds both.
  const TypeName type = l.name == r.name ? l.name
                        : l.name == TypeName::kFpoint3d || r.name == TypeName::kFpoint3d
                            ? TypeName::kFpoint3d
                            : TypeName::kFpoint;
  NodePtr a = MakeConversion(l.name, type, std::move(left.node));
  NodePtr b = MakeConversion(r.name, type, std::move(right.node));
  if (op == BinaryOperator::kEqual || op == BinaryOperator::kNotEqual) {
    return MakeValue(TypeName::kInt, MakeComparison(op, type, std::move(a), std::move(b)));
  }
  if (op != BinaryOperator::kAdd && op != BinaryOperator::kSubtract) FailOperands(op, l, r, range);
  return MakeValue(type, MakePointArithmetic(op, type, std::move(a), std::move(b)));
}

Value Compiler::CombineTexts(BinaryOperator op, Value left, Value right, const SourceRange& range) {
  if (op != BinaryOperator::kAdd && !IsComparison(op)) {
    FailOperands(op, left.type, right.type, range);
  }
  NodePtr a = ToText(std::move(left), range);
  NodePtr b = ToText(std::move(right), range);
  if (op == BinaryOperator::kAdd) {
    return {StaticType::Of(TypeName::kString), kTextCarrier,
            MakeConcatenation(std::move(a), std::move(b))};
  }
  return MakeValue(TypeName::kInt, MakeTextComparison(op, std::move(a), std::move(b)));
}

Value Compiler::CombineObjects(BinaryOperator op, Value left, Value right,
                               const SourceRange& range) {
  const StaticType l = left.type, r = right.type;
  const auto fits = [](const StaticType& type, const StaticType& other) {
    return HasOperators(type) || IsNumberOrComplex(type) ||
           (type.IsString() && other.IsVariant()) ||
           (type.IsPoint() && other.IsContainer() && IsPoint(other.element));
  };
  if (!fits(l, r) || !fits(r, l)) FailOperands(op, l, r, range);
  if (IsComparison(op)) {
    if (l.IsContainer() || r.IsContainer()) FailOperands(op, l, r, range);
    const StaticType variant = StaticType::Of(TypeName::kVariant);
    NodePtr a = Convert(std::move(left), variant, range).node;
    NodePtr b = Convert(std::move(right), variant, range).node;
    return MakeValue(TypeName::kInt,
                     MakeCompareObjects(ComparisonCode(op), std::move(a), std::move(b), range));
  }
  if (l.IsString()) left = Convert(std::move(left), r, range);
  if (r.IsString()) right = Convert(std::move(right), l, range);
  const unsigned code = OperationCode(op);
  if (code == 0) FailOperands(op, l, r, range);
  if (HasOperators(left.type)) {
    const StaticType type = left.type;
    NodePtr copy = MakeCopy(std::move(left.node), ObjectTypeOf(type), range);
    return {type, kObjectCarrier,
            MakeOperateOnCopy(code, std::move(copy), right.carrier, std::move(right.node), range)};
  }
  return {
      r, kObjectCarrier,
      MakeOperateOnFilled(code, left.carrier, std::move(left.node), std::move(right.node), range)};
}

Value Compiler::Step(UnaryOperator op, const Expression& operand, const SourceRange& range) {
  Place place = Reach(operand);
  const bool up = op == UnaryOperator::kPreIncrement || op == UnaryOperator::kPostIncrement;
  const bool old = op == UnaryOperator::kPostIncrement || op == UnaryOperator::kPostDecrement;
  if (place.is_const) Fail(range, "a constant cannot be changed");
  if (!place.type.IsNumber()) {
    Fail(range, std::string(up ? "++" : "--") + " cannot be applied to " + Spelling(place.type));
  }
  if (const auto* variable = std::get_if<Place::Variable>(&place.what)) {
    return MakeValue(place.type.name, MakeStep(place.type.name, variable->at, up, old));
  }
  Value one = MakeValue(TypeName::kInt, MakeConstant(1));
  const BinaryOperator add = up ? BinaryOperator::kAdd : BinaryOperator::kSubtract;
  if (place.Is<Place::Element>()) {
    return UpdateElement(std::move(place), add, std::move(one), old, range);
  }
  if (place.Is<Place::Property>()) {
    Value next = Combine(add, Load(std::move(place), range), std::move(one), range);
    Value stored = AssignTo(Reach(operand), std::nullopt, std::move(next), range);
    if (!old) return stored;
    const BinaryOperator back = up ? BinaryOperator::kSubtract : BinaryOperator::kAdd;
    return Combine(back, std::move(stored), MakeValue(TypeName::kInt, MakeConstant(1)), range);
  }
  Fail(range, "this cannot be changed by ++ or --");
}

}  // namespace tesselc

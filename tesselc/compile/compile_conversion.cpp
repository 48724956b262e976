#include "tesselc/compile/compiler.h"
#include "tesselc/run/text.h"

namespace tesselc {
namespace {

std::string CannotConvert(const StaticType& from, const StaticType& to) {
  return "cannot convert " + Spelling(from) + " to " + Spelling(to);
}

}  // namespace

Value Compiler::Convert(Value value, const StaticType& to, const SourceRange& range, bool is_cast) {
  const StaticType from = value.type;
  if (from.IsVoid()) Fail(range, "this has no value");
  if (from == to) return value;
  if (from.is_null && to.IsInteger()) {
    return Convert(MakeValue(TypeName::kInt, MakeConstant(0)), to, range);
  }
  if (from.is_null || from.is_array) Fail(range, CannotConvert(from, to));
  if (to.IsString()) {
    if (from.IsVariant()) return {to, kTextCarrier, ToText(std::move(value), range)};
    if (from.name == TypeName::kChar) {
      return {to, kTextCarrier, MakeTextOfChar(std::move(value.node))};
    }
    if (is_cast && (from.IsNumber() || from.IsComplex())) {
      return {to, kTextCarrier, MakeTextOfNumber(from.name, std::move(value.node))};
    }
    Fail(range, CannotConvert(from, to));
  }
  if (to.IsObject()) return ConvertToObject(std::move(value), to, range);
  if (from.IsVariant() && (to.IsNumber() || to.IsComplex())) {
    return MakeValue(to.name, MakeNumberOf(to.name, std::move(value.node), range));
  }
  if (from.IsString() && to.IsNumber() && is_cast) {
    return MakeValue(to.name, MakeNumberOfText(to.name, ToText(std::move(value), range)));
  }
  const bool both_points = from.IsPoint() && to.IsPoint();
  const bool numbers = from.IsNumber() && (to.IsNumber() || to.IsComplex());
  if (!both_points && !numbers && !(from.IsComplex() && to.IsNumber() && is_cast)) {
    Fail(range, CannotConvert(from, to));
  }
  return MakeValue(to.name, MakeConversion(from.name, to.name, std::move(value.node)));
}

Value Compiler::ConvertToObject(Value value, const StaticType& to, const SourceRange& range) {
  const StaticType from = value.type;
  const bool containers = (from.IsContainer() && to.IsContainer()) || to.IsVariant() ||
                          (from.IsVariant() && to.IsContainer());
  if (!containers || to.is_array) Fail(range, CannotConvert(from, to));
  if (CanReferTo(to, from)) return {to, kObjectCarrier, std::move(value.node)};
  return {to, kObjectCarrier,
          MakeTemporary(ObjectTypeOf(to), value.carrier, std::move(value.node), range)};
}

NodePtr Compiler::ToNumber(Value value, TypeName number, const SourceRange& range) {
  return Convert(std::move(value), StaticType::Of(number), range).node;
}

NodePtr Compiler::ToIndex(const Expression& expression) {
  Value value = CompileValue(expression);
  if (!value.type.IsNumber()) Fail(expression.range, "an index must be a number");
  if (!IsFloating(value.type.name)) {
    return ToNumber(std::move(value), TypeName::kInt64, expression.range);
  }
  return MakeIndex(ToNumber(std::move(value), TypeName::kDouble, expression.range),
                   expression.range);
}

NodePtr Compiler::ToStored(Value value, const StaticType& to, const SourceRange& range) {
  if (value.type.IsInteger() && to.IsInteger()) {
    return MakeSaturating(value.type.name, to.name, std::move(value.node));
  }
  return Convert(std::move(value), to, range).node;
}

NodePtr Compiler::ToText(Value value, const SourceRange& range) {
  if (value.carrier == kTextCarrier) return std::move(value.node);
  if (value.type.name == TypeName::kChar && !value.type.is_array) {
    return MakeTextOfChar(std::move(value.node));
  }
  if (value.type.IsString() || value.type.IsVariant()) {
    return MakeTextOf(std::move(value.node), range);
  }
  Fail(range, CannotConvert(value.type, StaticType::Of(TypeName::kString)));
}

NodePtr Compiler::ToTruth(Value value, const SourceRange& range) {
  // What tests a truth tests an int against 0.
  if (value.type == StaticType::Of(TypeName::kInt)) return std::move(value.node);
  if (value.type.is_null) return MakeConstant(0);
  if (value.type.IsVariant()) return MakeTruthOf(std::move(value.node), range);
  if (!value.type.IsNumber() && !value.type.IsComplex()) {
    Fail(range, "a condition cannot be of type " + Spelling(value.type));
  }
  return MakeTruth(value.type.name, std::move(value.node));
}

NodePtr Compiler::ToObject(Value value, const SourceRange& range) {
  if (value.carrier == kObjectCarrier) return std::move(value.node);
  if (value.type.IsVoid() || value.type.is_null) Fail(range, "an object is needed here");
  return MakeTemporary(ObjectTypeOf(value.type), value.carrier, std::move(value.node), range);
}

NodePtr Compiler::ToOwnedObject(Value value, const StaticType& type, const SourceRange& range) {
  if (type.IsString()) {
    return MakeTemporary(ObjectTypeOf(type), kTextCarrier, ToText(std::move(value), range), range);
  }
  value = Convert(std::move(value), type, range);
  return MakeCopy(std::move(value.node), ObjectTypeOf(type), range);
}

}  // namespace tesselc

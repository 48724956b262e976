#include "tesselc/compile/compiler.h"
#include "tesselc/run/control.h"
#include "tesselc/run/elements.h"
#include "tesselc/run/objects.h"
#include "tesselc/run/text.h"

namespace tesselc {
Value Compiler::AssignTo(Place target, std::optional<BinaryOperator> op, Value value,
                         const SourceRange& range) {
  if (target.is_const) Fail(range, "a constant cannot be changed");
  if (target.Is<Place::Variable>()) {
    return AssignVariable(std::move(target), op, std::move(value), range);
  }
  if (target.Is<Place::Element>()) {
    return AssignElement(std::move(target), op, std::move(value), range);
  }
  if (target.Is<Place::Object>()) {
    return AssignObject(std::move(target), op, std::move(value), range);
  }
  if (target.Is<Place::Property>()) {
    return AssignProperty(std::move(target), std::move(value), range);
  }
  Fail(range, target.Is<Place::MatrixRow>()
                  ? "an element of a matrix needs two indices"
                  : "what is left of the assignment cannot be assigned to");
}

Value Compiler::AssignVariable(Place target, std::optional<BinaryOperator> op, Value value,
                               const SourceRange& range) {
  const TypeName type = target.type.name;
  const VariablePlace& variable = std::get<Place::Variable>(target.what).at;
  if (op) {
    // The short way, where the arithmetic is done in the variable's own type.
    const bool own = target.type.IsNumber() && value.type.IsNumber() && Promoted(type) == type &&
                     CommonNumber(type, value.type.name) == type;
    if (own) {
      NodePtr number = MakeConversion(value.type.name, type, std::move(value.node));
      if (NodePtr node = MakeUpdate(type, variable, *op, number)) {
        return MakeValue(type, std::move(node));
      }
      value = MakeValue(type, std::move(number));
    }
    return UpdateVariable(std::move(target), *op, std::move(value), range);
  }
  value = Convert(std::move(value), target.type, range);
  return MakeValue(type, MakeStore(type, variable, std::move(value.node)));
}

// As for an element, the operand is computed before the variable is read: it may change it.
Value Compiler::UpdateVariable(Place target, BinaryOperator op, Value value,
                               const SourceRange& range) {
  const TypeName type = target.type.name;
  const VariablePlace& variable = std::get<Place::Variable>(target.what).at;
  NodePtr first;
  if (value.type.IsScalar() && !IsPlain(value.type.name, *value.node)) {
    const StaticType operand_type = value.type;
    const std::uint32_t operand = context_.layout->Allocate(ScalarSize(operand_type.name));
    first = MakeStore(operand_type.name, VariablePlace::Local(operand), std::move(value.node));
    value = Scratch(operand_type, operand);
  }
  value = Combine(op, MakeValue(type, MakeLoad(type, variable)), std::move(value), range);
  value = Convert(std::move(value), target.type, range);
  NodePtr store = MakeStore(type, variable, std::move(value.node));
  if (first != nullptr) store = MakeComma(type, std::move(first), std::move(store));
  return MakeValue(type, std::move(store));
}

Value Compiler::Scratch(const StaticType& type, std::uint32_t offset) {
  return MakeValue(type.name, MakeLoad(type.name, VariablePlace::Local(offset)));
}

Value Compiler::AssignElement(Place target, std::optional<BinaryOperator> op, Value value,
                              const SourceRange& range) {
  if (op) return UpdateElement(std::move(target), *op, std::move(value), false, range);
  const StaticType type = target.type;
  auto& element = std::get<Place::Element>(target.what);
  const Carrier carrier = element.carrier;
  NodePtr stored;
  if (carrier == kTextCarrier) {
    value = Convert(std::move(value), type, range);
    stored = ToText(std::move(value), range);
  } else {
    stored = element.has_operations ? ToStored(std::move(value), type, range)
                                    : Convert(std::move(value), type, range).node;
  }
  return {type, carrier, MakeStoreElement(carrier, std::move(element.node), std::move(stored))};
}

// The operand is computed first, then the element is found once, read, combined and written.
Value Compiler::UpdateElement(Place target, BinaryOperator op, Value value, bool give_old,
                              const SourceRange& range) {
  const TypeName type = target.type.name;
  auto& place = std::get<Place::Element>(target.what);
  if (value.type.IsVariant()) value = Convert(std::move(value), target.type, range);
  if (!value.type.IsScalar()) {
    Fail(range, "an element cannot be combined with " + Spelling(value.type));
  }
  const unsigned code = OperationCode(op);
  if (code != 0 && place.has_operations && value.type.IsPoint() <= target.type.IsPoint()) {
    return MakeValue(type, MakeOperateElement(type, std::move(place.node), code, value.type.name,
                                              std::move(value.node), give_old, range));
  }
  const std::uint32_t operand = context_.layout->Allocate(ScalarSize(value.type.name));
  const std::uint32_t element = context_.layout->Allocate(ScalarSize(type));
  const StaticType operand_type = value.type;
  NodePtr first =
      MakeStore(operand_type.name, VariablePlace::Local(operand), std::move(value.node));
  Value combined =
      Combine(op, Scratch(target.type, element), Scratch(operand_type, operand), range);
  NodePtr stored = place.has_operations ? ToStored(std::move(combined), target.type, range)
                                        : Convert(std::move(combined), target.type, range).node;
  return MakeValue(type, MakeUpdateElement(type, std::move(place.node), element, std::move(first),
                                           std::move(stored), give_old));
}

Value Compiler::AssignObject(Place target, std::optional<BinaryOperator> op, Value value,
                             const SourceRange& range) {
  const StaticType type = target.type;
  NodePtr& object = std::get<Place::Object>(target.what).node;
  if (value.type.is_null) Fail(range, "NULL cannot be assigned to " + Spelling(type));
  if (value.type.IsVoid()) Fail(range, "what is right of the assignment has no value");
  if (type.is_array || value.type.is_array) {
    Fail(range, "an array is assigned element by element");
  }
  if (type.IsString()) {
    if (op && *op != BinaryOperator::kAdd) Fail(range, "a string only knows = and +=");
    if (!value.type.IsString() && !value.type.IsVariant() && value.type.name != TypeName::kChar) {
      value = Convert(std::move(value), type, range);
    }
    NodePtr text = ToText(std::move(value), range);
    return {type, kObjectCarrier,
            op ? MakeAppendText(std::move(object), std::move(text), range)
               : MakeSetText(std::move(object), std::move(text), range)};
  }
  const unsigned code = op ? OperationCode(*op) : operation::kAssign;
  if (code == 0 || (op && !type.IsContainer() && !type.IsVariant())) {
    Fail(range, Spelling(type) + " does not know this assignment");
  }
  if (type.IsVariant() && (value.type.IsString() || value.type.IsPoint())) {
    value = Convert(std::move(value), type, range);
  }
  const bool scalar = value.type.IsNumber() || value.type.IsComplex() ||
                      (value.type.IsPoint() && type.IsContainer() && IsPoint(type.element));
  const bool fits = scalar ? type.IsContainer() || type.IsVariant()
                           : CanReferTo(type, value.type) || CanReferTo(value.type, type) ||
                                 (type.IsContainer() && value.type.IsContainer()) ||
                                 ((type.IsVariant() || value.type.IsVariant()) &&
                                  value.carrier == kObjectCarrier);
  if (!fits) {
    Fail(range, "cannot convert " + Spelling(value.type) + " to " + Spelling(type));
  }
  return {type, kObjectCarrier,
          MakeOperate(code, std::move(object), value.carrier, std::move(value.node), range)};
}

Value Compiler::AssignProperty(Place target, Value value, const SourceRange& range) {
  const StaticType type = target.type;
  const Carrier carrier = CarrierOf(type);
  value = Convert(std::move(value), type, range);
  NodePtr node = carrier == kTextCarrier ? ToText(std::move(value), range) : std::move(value.node);
  return {type, carrier,
          MakePropertySet(std::move(std::get<Place::Property>(target.what).use), carrier,
                          std::move(node))};
}

}  // namespace tesselc

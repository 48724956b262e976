#include "frame/interface/missing_value.h"
#include "tesselc/compile/compiler.h"
#include "tesselc/compile/constants.h"
#include "tesselc/run/elements.h"
#include "tesselc/run/long_chain.h"
#include "tesselc/similar_name.h"

namespace tesselc {

Value Compiler::CompileValue(const Expression& expression) {
  return Load(Reach(expression), expression.range);
}

Place Compiler::Reach(const Expression& expression) {
  return std::visit([&](const auto& node) { return Visit(node, expression.range); },
                    expression.node);
}

Value Compiler::Load(Place place, const SourceRange& range) {
  const StaticType type = place.type;
  return std::visit(
      Overloaded{
          [&](Place::Computed& value) -> Value {
            return {type, value.carrier, std::move(value.node)};
          },
          [&](Place::Variable& variable) -> Value {
            return {type, type.name, MakeLoad(type.name, variable.at)};
          },
          [&](Place::Element& element) -> Value {
            return {type, element.carrier, std::move(element.node)};
          },
          [&](Place::Object& object) -> Value {
            return {type, kObjectCarrier, std::move(object.node)};
          },
          [&](Place::MatrixRow&) -> Value {
            Fail(range, "an element of a matrix needs two indices");
          },
          [&](Place::Property& property) -> Value {
            const Carrier carrier = CarrierOf(type);
            return {type, carrier,
                    MakePropertyGet(std::move(property.use), carrier, ObjectTypeOf(type))};
          },
      },
      place.what);
}

Place Compiler::Visit(const IntLiteral& literal, const SourceRange&) {
  return AsPlace(MakeValue(literal.type, WithNumber(literal.type, [&](auto t) {
                             using T = typename decltype(t)::type;
                             return MakeConstant<T>(static_cast<T>(literal.value));
                           })));
}

Place Compiler::Visit(const FloatLiteral& literal, const SourceRange&) {
  if (literal.type == TypeName::kFloat) {
    return AsPlace(MakeValue(TypeName::kFloat, MakeConstant(static_cast<float>(literal.value))));
  }
  return AsPlace(MakeValue(TypeName::kDouble, MakeConstant(literal.value)));
}

Place Compiler::Visit(const ImaginaryLiteral& literal, const SourceRange&) {
  return AsPlace(MakeValue(TypeName::kComplex, MakeConstant(OneTCcomplex(0, literal.value))));
}

Place Compiler::Visit(const CharLiteral& literal, const SourceRange&) {
  return AsPlace(MakeValue(TypeName::kChar, MakeConstant(literal.value)));
}

Place Compiler::Visit(const StringLiteral& literal, const SourceRange&) {
  return AsPlace({StaticType::Of(TypeName::kString), kTextCarrier,
                  MakeConstant(CStringUTF8(std::string_view(literal.value)))});
}

Place Compiler::Visit(const NullLiteral&, const SourceRange&) {
  return AsPlace({StaticType::Null(), TypeName::kVoid, nullptr});
}

const Symbol* Compiler::FindSymbol(std::string_view name) const {
  for (auto level = context_.levels.rbegin(); level != context_.levels.rend(); ++level) {
    const auto found = level->symbols.find(name);
    if (found != level->symbols.end()) return &found->second;
  }
  const auto found = globals_.symbols.find(name);
  return found == globals_.symbols.end() ? nullptr : &found->second;
}

Place Compiler::Visit(const Name& name, const SourceRange& range) {
  const Symbol* symbol = FindSymbol(name.text);
  if (!symbol && functions_.contains(name.text)) {
    Fail(range, "'" + name.text + "' is a function; call it with ()");
  }
  if (!symbol) {
    SimilarName similar(name.text);
    for (const auto& level : context_.levels) {
      for (const auto& known : level.symbols) similar.Offer(known.first);
    }
    for (const auto& known : globals_.symbols) similar.Offer(known.first);
    Fail(range, "there is no variable '" + name.text + "'", similar.Notes());
  }
  Place place{symbol->type, symbol->is_const, {}};
  if (symbol->type.IsScalar()) {
    place.what = Place::Variable{symbol->variable};
  } else {
    place.what = Place::Object{MakeLoadObject(symbol->object, name.text, range), symbol};
  }
  return place;
}

Place Compiler::Visit(const ScopedName& name, const SourceRange& range) {
  const auto value = FindConstant(name.scope, name.name.text);
  if (!value) {
    Fail(name.name.range,
         std::string(Spelling(name.scope)) + " has no constant '" + name.name.text + "'");
  }
  static_cast<void>(range);
  return AsPlace(MakeValue(TypeName::kInt, MakeConstant(*value)));
}

Place Compiler::Visit(const Unary& unary, const SourceRange& range) {
  switch (unary.op) {
    case UnaryOperator::kDereference:
    case UnaryOperator::kAddressOf:
      Fail(unary.op_range, "pointers are not supported yet");
    case UnaryOperator::kPreIncrement:
    case UnaryOperator::kPreDecrement:
    case UnaryOperator::kPostIncrement:
    case UnaryOperator::kPostDecrement:
      return AsPlace(Step(unary.op, *unary.operand, range));
    default:
      break;
  }
  Value operand = CompileValue(*unary.operand);
  if (unary.op == UnaryOperator::kNot) {
    NodePtr truth = ToTruth(std::move(operand), unary.operand->range);
    return AsPlace(MakeValue(TypeName::kInt, MakeNot(std::move(truth))));
  }
  if (unary.op == UnaryOperator::kMinus && operand.type.IsContainer()) {
    return AsPlace(
        {operand.type, kObjectCarrier, MakeNegateObject(std::move(operand.node), range)});
  }
  if (unary.op == UnaryOperator::kMinus && operand.type.IsVariant()) {
    // A short zero never widens the value's type.
    Value zero = Convert(MakeValue(TypeName::kInt, MakeConstant(0)),
                         StaticType::Of(TypeName::kShort), range);
    return AsPlace(Combine(BinaryOperator::kSubtract, std::move(zero), std::move(operand), range));
  }
  if (operand.type.IsComplex() && unary.op != UnaryOperator::kComplement) {
    if (unary.op == UnaryOperator::kPlus) return AsPlace(std::move(operand));
    return AsPlace(
        MakeValue(TypeName::kComplex, MakeNegate(TypeName::kComplex, std::move(operand.node))));
  }
  if (!operand.type.IsNumber()) {
    Fail(unary.op_range, "this operator cannot be applied to " + Spelling(operand.type));
  }
  const TypeName type = Promoted(operand.type.name);
  NodePtr number = MakeConversion(operand.type.name, type, std::move(operand.node));
  if (unary.op == UnaryOperator::kPlus) return AsPlace(MakeValue(type, std::move(number)));
  if (unary.op == UnaryOperator::kMinus) {
    return AsPlace(MakeValue(type, MakeNegate(type, std::move(number))));
  }
  if (!IsInteger(type)) Fail(unary.op_range, "~ needs an integer");
  return AsPlace(MakeValue(type, MakeComplement(type, std::move(number))));
}

Place Compiler::Visit(const Binary& binary, const SourceRange&) {
  constexpr std::size_t kLinksBetweenRests = 64;
  const bool is_comma = binary.rest.front().op == BinaryOperator::kComma;
  Value left =
      is_comma ? Load(Reach(*binary.first), binary.first->range) : CompileValue(*binary.first);
  LongChain chain;
  std::size_t links = 0;
  for (const Binary::Link& link : binary.rest) {
    if (++links % kLinksBetweenRests == 0 && left.node != nullptr) {
      left.node = chain.Rest(left.carrier, std::move(left.node));
    }
    left = CompileLink(binary.first->range, std::move(left), link);
  }
  left.node = chain.Finish(left.carrier, std::move(left.node));
  return AsPlace(std::move(left));
}

Value Compiler::CompileLink(const SourceRange& first, Value left, const Binary::Link& link) {
  Value right = CompileValue(*link.operand);
  switch (link.op) {
    case BinaryOperator::kLogicalAnd:
    case BinaryOperator::kLogicalOr: {
      NodePtr a = ToTruth(std::move(left), first);
      NodePtr b = ToTruth(std::move(right), link.operand->range);
      return MakeValue(TypeName::kInt, link.op == BinaryOperator::kLogicalAnd
                                           ? MakeAnd(std::move(a), std::move(b))
                                           : MakeOr(std::move(a), std::move(b)));
    }
    case BinaryOperator::kComma:
      if (!left.node || !right.node) Fail(link.op_range, "NULL cannot be used here");
      if (right.carrier != TypeName::kVoid) {
        right.node = MakeComma(right.carrier, std::move(left.node), std::move(right.node));
      } else {
        std::vector<PlacedStatement> both;
        both.push_back({std::move(left.node), first});
        both.push_back({std::move(right.node), link.operand->range});
        right.node = MakeBlock(std::move(both));
      }
      return right;
    default:
      return Combine(link.op, std::move(left), std::move(right), link.op_range);
  }
}

Place Compiler::Visit(const Assign& assign, const SourceRange&) {
  Value value = CompileValue(*assign.value);
  Place target = Reach(*assign.target);
  const auto* element = std::get_if<Place::Element>(&target.what);
  const bool text = element && element->carrier == kTextCarrier;
  if (assign.op && !target.is_const && (text || target.Is<Place::Property>())) {
    value = Combine(*assign.op, Load(std::move(target), assign.target->range), std::move(value),
                    assign.op_range);
    return AsPlace(
        AssignTo(Reach(*assign.target), std::nullopt, std::move(value), assign.op_range));
  }
  return AsPlace(AssignTo(std::move(target), assign.op, std::move(value), assign.op_range));
}

Place Compiler::Visit(const Conditional& conditional, const SourceRange& range) {
  NodePtr condition = CompileCondition(*conditional.condition);
  Value yes = CompileValue(*conditional.yes);
  Value no = CompileValue(*conditional.no);
  StaticType type = yes.type;
  if (yes.type.IsNumber() && no.type.IsNumber()) {
    type =
        yes.type == no.type ? yes.type : StaticType::Of(CommonNumber(yes.type.name, no.type.name));
  } else if (no.type.IsComplex() && yes.type.IsNumber()) {
    type = no.type;
  }
  if (type.is_null || type.IsVoid()) Fail(range, "both results must be values of one type");
  yes = Convert(std::move(yes), type, conditional.yes->range);
  no = Convert(std::move(no), type, conditional.no->range);
  if (type.IsString() && yes.carrier != no.carrier) {
    yes.node = ToText(std::move(yes), conditional.yes->range);
    no.node = ToText(std::move(no), conditional.no->range);
    yes.carrier = kTextCarrier;
  }
  const Carrier carrier = yes.carrier;
  return AsPlace(
      {type, carrier,
       MakeConditional(carrier, std::move(condition), std::move(yes.node), std::move(no.node))});
}

Place Compiler::Visit(const Cast& cast, const SourceRange& range) {
  Value operand = CompileValue(*cast.operand);
  return AsPlace(Convert(std::move(operand), Resolve(cast.type), range, true));
}

Place Compiler::Visit(const Construct& construct, const SourceRange& range) {
  const StaticType type = Resolve(construct.type);
  if (type.IsObject() && construct.arguments.size() == 1) {
    return AsPlace(Convert(CompileValue(*construct.arguments[0]), type, range, true));
  }
  return AsPlace(ConstructScalar(type, construct.arguments, range));
}

Value Compiler::ConstructScalar(const StaticType& type, const std::vector<ExpressionPtr>& arguments,
                                const SourceRange& range) {
  if (arguments.size() == 1 && type.IsScalar() && !type.IsPoint()) {
    return Convert(CompileValue(*arguments[0]), type, range, true);
  }
  if (arguments.size() == 1 && type.IsPoint()) {
    Value value = CompileValue(*arguments[0]);
    if (value.type.IsPoint()) return Convert(std::move(value), type, range);
  }
  const std::size_t most = type.name == TypeName::kFpoint3d     ? 3
                           : type.IsComplex() || type.IsPoint() ? 2
                                                                : 0;
  if (!type.IsScalar() || arguments.size() > most) {
    Fail(range,
         "there is no " + Spelling(type) + " of " + std::to_string(arguments.size()) + " values");
  }
  if (type.IsNumber()) return Convert(MakeValue(TypeName::kInt, MakeConstant(0)), type, range);
  std::vector<NodePtr> parts;
  for (const ExpressionPtr& argument : arguments) {
    parts.push_back(ToNumber(CompileValue(*argument), TypeName::kDouble, argument->range));
  }
  return MakeValue(type.name, MakeFromParts(type.name, std::move(parts)));
}

Place Compiler::Visit(const Index& index, const SourceRange& range) {
  Place base = Reach(*index.object);
  NodePtr number = ToIndex(*index.index);
  const StaticType type = base.type;
  const bool is_const = base.is_const;
  Place element;
  if (auto* row = std::get_if<Place::MatrixRow>(&base.what)) {
    element = CellOf(type, std::move(row->matrix), std::move(row->row), std::move(number), range);
  } else if (type.is_array) {
    element = IndexArray(std::move(base), std::move(number), range);
  } else {
    if (!type.IsContainer() && !type.IsString() && type.name != TypeName::kStringArray) {
      Fail(range, Spelling(type) + " cannot be indexed");
    }
    NodePtr object = ToObject(Load(std::move(base), index.object->range), index.object->range);
    if (type.IsMatrix()) {
      element = {type, false, Place::MatrixRow{std::move(object), std::move(number)}};
    } else {
      element = ElementOf(type, std::move(object), std::move(number), range);
    }
  }
  element.is_const = is_const;
  return element;
}

Place Compiler::IndexArray(Place base, NodePtr index, const SourceRange& range) {
  const StaticType type = base.type.Item();
  NodePtr array = Load(std::move(base), range).node;
  if (!type.IsScalar()) {
    return {type, false,
            Place::Object{MakeArrayItem(std::move(array), std::move(index), range), nullptr}};
  }
  return {
      type, false,
      Place::Element{type.name,
                     MakeArrayElement(type.name, std::move(array), std::move(index), range), true}};
}

Place Compiler::ElementOf(const StaticType& container, NodePtr object, NodePtr index,
                          const SourceRange& range) {
  const StaticType type = ElementType(container);
  NodePtr node;
  if (container.IsVector()) {
    node = MakeVectorElement(container.element, std::move(object), std::move(index), range);
  } else if (container.IsString()) {
    node = MakeTextChar(std::move(object), std::move(index), range);
  } else {
    node = MakeTextElement(std::move(object), std::move(index), range);
  }
  return {type, false, Place::Element{CarrierOf(type), std::move(node), container.IsVector()}};
}

Place Compiler::CellOf(const StaticType& matrix, NodePtr object, NodePtr row, NodePtr column,
                       const SourceRange& range) {
  const StaticType type = ElementType(matrix);
  return {type, false,
          Place::Element{type.name,
                         MakeMatrixCell(matrix.element, std::move(object), std::move(row),
                                        std::move(column), range),
                         true}};
}

Place Compiler::Visit(const InitializerList&, const SourceRange& range) {
  Fail(range, "a list in braces can only initialise a variable");
}

}  // namespace tesselc

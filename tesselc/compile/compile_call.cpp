#include <algorithm>

#include "tesselc/compile/compiler.h"
#include "tesselc/run/builtins.h"
#include "tesselc/run/container_mathematics.h"
#include "tesselc/run/elements.h"

namespace tesselc {

Place Compiler::Visit(const Call& call, const SourceRange& range) {
  const auto found = functions_.find(call.function.text);
  if (found != functions_.end()) return AsPlace(CallFunction(*found->second, call, range));
  return AsPlace(CallBuiltin(call, range));
}

Value Compiler::CallFunction(const Signature& signature, const Call& call,
                             const SourceRange& range) {
  const auto& declared = signature.declaration->parameters;
  const std::size_t given = call.arguments.size();
  if (given > declared.size() || (given < declared.size() && !declared[given].default_value)) {
    Fail(call.function.range, "'" + call.function.text + "' takes " +
                                  std::to_string(declared.size()) + " arguments, not " +
                                  std::to_string(given));
  }
  std::vector<ParameterPtr> parameters;
  for (std::size_t i = 0; i < given; ++i) {
    parameters.push_back(PassToParameter(Reach(*call.arguments[i]), signature.parameters[i],
                                         call.arguments[i]->range));
  }
  // A default knows the global names only.
  auto levels = std::exchange(context_.levels, {});
  for (std::size_t i = given; i < declared.size(); ++i) {
    const Expression& value = *declared[i].default_value;
    try {
      parameters.push_back(PassToParameter(Reach(value), signature.parameters[i], value.range));
    } catch (...) {
      context_.levels = std::move(levels);
      throw;
    }
  }
  context_.levels = std::move(levels);
  return {signature.result, signature.compiled.result,
          MakeCall(signature.compiled, std::move(parameters), range)};
}

ParameterPtr Compiler::PassToParameter(Place place, const Signature::Parameter& parameter,
                                       const SourceRange& range) {
  if (place.type.is_null) {
    Fail(range, "NULL cannot be passed to " + Spelling(parameter.type));
  }
  if (parameter.by_reference) {
    if (CanReferTo(parameter.type, place.type) && place.IsStored())
      return PassByReference(std::move(place), parameter, range);
    if (!parameter.is_const) {
      Fail(range, "a reference to " + Spelling(parameter.type) + " needs a variable of that type");
    }
  }
  Value value = Load(std::move(place), range);
  if (parameter.type.IsScalar()) {
    if (parameter.by_reference) {
      const std::uint32_t scratch = context_.layout->Allocate(ScalarSize(parameter.type.name));
      NodePtr store = MakeStore(parameter.type.name, VariablePlace::Local(scratch),
                                Convert(std::move(value), parameter.type, range).node);
      return MakeStoredParameter(parameter.offset, std::move(store), VariablePlace::Local(scratch));
    }
    return MakeScalarParameter(parameter.type.name, parameter.offset,
                               Convert(std::move(value), parameter.type, range).node);
  }
  NodePtr object = ToOwnedObject(std::move(value), parameter.type, range);
  if (!parameter.by_reference) return MakeOwnedParameter(parameter.offset, std::move(object));
  return MakeReferenceParameter(parameter.offset, MakeObjectBinding(std::move(object)));
}

ParameterPtr Compiler::PassByReference(Place place, const Signature::Parameter& parameter,
                                       const SourceRange& range) {
  if (place.is_const && !parameter.is_const) {
    Fail(range, "a constant cannot be passed by reference");
  }
  if (const auto* variable = std::get_if<Place::Variable>(&place.what)) {
    return MakeVariableParameter(parameter.offset, variable->at);
  }
  if (auto* object = std::get_if<Place::Object>(&place.what)) {
    return MakeBorrowedParameter(parameter.offset, std::move(object->node));
  }
  auto* element = std::get_if<Place::Element>(&place.what);
  if (element && element->carrier != kTextCarrier) {
    return MakeElementParameter(place.type.name, parameter.offset, std::move(element->node));
  }
  return MakeReferenceParameter(parameter.offset, BindObject(std::move(place), range));
}

std::vector<PrintArgument> Compiler::CompilePrinted(const std::vector<ExpressionPtr>& arguments,
                                                    std::size_t first, bool only_texts) {
  std::vector<PrintArgument> printed;
  for (std::size_t i = first; i < arguments.size(); ++i) {
    const SourceRange& range = arguments[i]->range;
    Value value = CompileValue(*arguments[i]);
    if (value.type.IsVoid()) Fail(range, "this has no value");
    if (value.type.is_null) Fail(range, "NULL cannot be printed");
    if (value.type.IsString()) {
      printed.push_back({kTextCarrier, ToText(std::move(value), range)});
    } else if (only_texts && !value.type.IsNumber()) {
      Fail(range, "printf takes numbers and strings, not " + Spelling(value.type));
    } else {
      printed.push_back({value.carrier, std::move(value.node)});
    }
  }
  return printed;
}

Value Compiler::CallBuiltin(const Call& call, const SourceRange& range) {
  const std::string& name = call.function.text;
  const auto& arguments = call.arguments;
  const auto need = [&](std::size_t count) {
    if (arguments.size() != count) {
      Fail(call.function.range, "'" + name + "' takes " + std::to_string(count) +
                                    (count == 1 ? " argument" : " arguments") + ", not " +
                                    std::to_string(arguments.size()));
    }
  };
  if (name == "print")
    return {{}, TypeName::kVoid, MakePrint(CompilePrinted(arguments, 0, false), range)};
  if (name == "printf") {
    if (arguments.empty()) Fail(call.function.range, "'printf' needs a format");
    NodePtr format = ToText(CompileValue(*arguments[0]), arguments[0]->range);
    return MakeValue(TypeName::kInt,
                     MakePrintf(std::move(format), CompilePrinted(arguments, 1, true), range));
  }
  if (name == "assert") {
    need(1);
    return {{}, TypeName::kVoid, MakeAssert(CompileCondition(*arguments[0]), range)};
  }
  if (name == "exit") {
    need(1);
    return {{},
            TypeName::kVoid,
            MakeExit(ToNumber(CompileValue(*arguments[0]), TypeName::kInt, arguments[0]->range))};
  }
  if (name == "clock") {
    need(0);
    return MakeValue(TypeName::kDouble, MakeClock());
  }
  const MathFunction* function = FindMathFunction(name);
  if (!function) return CallHost(call);
  need(function->binary ? 2 : 1);
  std::vector<Value> values;
  for (const ExpressionPtr& argument : arguments) values.push_back(CompileValue(*argument));
  const bool on_containers =
      std::ranges::any_of(values, [](const Value& value) { return value.type.IsContainer(); });
  if (on_containers) return MathOnContainers(*function, std::move(values), range);
  std::vector<NodePtr> numbers;
  for (std::size_t i = 0; i < values.size(); ++i) {
    numbers.push_back(ToNumber(std::move(values[i]), TypeName::kDouble, arguments[i]->range));
  }
  const TypeName result = function->test ? TypeName::kInt : TypeName::kDouble;
  return MakeValue(result, MakeMathCall(*function, std::move(numbers)));
}

Value Compiler::MathOnContainers(const MathFunction& function, std::vector<Value> arguments,
                                 const SourceRange& range) {
  const auto refuse = [&](const StaticType& type) {
    Fail(range, "'" + std::string(function.name) + "' cannot be applied to " + Spelling(type),
         {std::string("it takes numbers, and containers of double or float") +
          (function.complex_unary ? " or complex" : "")});
  };
  // The result is a container of the same elements, and nobody else's.
  const auto fresh = [&](Value value, StaticType& type) {
    const StaticType from = value.type;
    type = {from.IsMatrix() ? TypeName::kMatrix : TypeName::kVector, from.element};
    if (from == type) return MakeCopy(std::move(value.node), ObjectTypeOf(type), range);
    return MakeTemporary(ObjectTypeOf(type), kObjectCarrier, std::move(value.node), range);
  };
  const bool second = !arguments[0].type.IsContainer();
  Value& target = arguments[second ? 1 : 0];
  const TypeName element = target.type.element;
  const bool is_complex = element == TypeName::kComplex;
  if (is_complex ? !function.complex_unary : !IsFloating(element) || function.test) {
    refuse(target.type);
  }
  StaticType type;
  if (arguments.size() == 1) {
    NodePtr container = fresh(std::move(target), type);
    return {type, kObjectCarrier,
            MakeMathOnContainer(function, element, std::move(container), range)};
  }
  Value& other = arguments[second ? 0 : 1];
  const bool is_container = other.type.IsContainer();
  NodePtr operand;
  if (is_container) {
    if (other.type.element != element || other.type.IsMatrix() != target.type.IsMatrix()) {
      refuse(other.type);
    }
    operand = std::move(other.node);
  } else {
    operand = ToNumber(std::move(other), TypeName::kDouble, range);
  }
  const Carrier carrier = is_container ? kObjectCarrier : TypeName::kDouble;
  NodePtr container = fresh(std::move(target), type);
  return {type, kObjectCarrier,
          MakeMathOnContainers(function, element, second ? MathTarget::kSecond : MathTarget::kFirst,
                               std::move(container), carrier, std::move(operand), range)};
}

}  // namespace tesselc

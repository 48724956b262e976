#include <algorithm>

#include "tesselc/compile/compiler.h"

namespace tesselc {
namespace {

bool IsText(const StaticType& type) { return type.IsString(); }

// How well an argument fits a parameter; below 0 not at all.
int Fit(const Parameter& parameter, const StaticType& argument, bool is_place) {
  const StaticType wanted{parameter.type.name, IsTemplate(parameter.type.name)
                                                   ? parameter.type.element
                                                   : TypeName::kVoid};
  const bool writes = parameter.type.is_reference && !parameter.type.is_const;
  if (writes && !is_place && !argument.is_null) return -1;
  if (wanted.name == TypeName::kAny || wanted.name == TypeName::kBuffer) return 1;
  if (argument.is_null) return wanted.IsObject() ? 1 : 0;
  if (wanted.name == TypeName::kNumeric)
    return argument.IsNumber() || argument.IsComplex() ? 2 : -1;
  if (wanted == argument) return 4;
  if (CanReferTo(wanted, argument)) return 3;
  if (wanted.name == TypeName::kChar) return argument.IsInteger() ? 2 : -1;
  if (IsText(wanted)) return IsText(argument) ? 4 : argument.IsVariant() ? 1 : -1;
  if (wanted.IsNumber()) return argument.IsNumber() ? 3 : argument.IsVariant() ? 1 : -1;
  if (wanted.IsComplex()) return argument.IsNumber() ? 2 : -1;
  if (wanted.IsContainer()) return argument.IsContainer() && !writes ? 0 : -1;
  return -1;
}

// How well the arguments fit an overload: the count first, then each argument.
int Fit(const CatalogueMember& member, const std::vector<Place>& arguments) {
  const std::size_t given = arguments.size();
  int total = 0;
  if (given < member.RequiredCount() ||
      (given > member.parameters.size() && !member.IsVariadic())) {
    total -= 1000;
  }
  for (std::size_t i = 0; i < std::min(given, member.parameters.size()); ++i) {
    if (member.parameters[i].variadic) break;
    const bool is_place = !arguments[i].Is<Place::Computed>();
    const int fit = Fit(member.parameters[i], arguments[i].type, is_place);
    total += fit < 0 ? -50 : fit;
  }
  return total;
}

}  // namespace

MemberUse Compiler::UseMember(const Expression& object, const Identifier& member, StaticType& type,
                              std::vector<const CatalogueMember*>& found) {
  Place place = Reach(object);
  if (place.type.is_null) Fail(object.range, "NULL is no object");
  type = place.type;
  type.is_array = false;
  const Catalogue& catalogue = Catalogue::Get();
  const CatalogueClass* owner = type.IsVoid() ? nullptr : catalogue.FindClass(type.name);
  if (owner) found = catalogue.FindMembers(owner->name, member.text);
  if (found.empty()) {
    Fail(member.range, owner ? Spelling(type) + " has no member '" + member.text + "'"
                             : Spelling(type) + " has no members");
  }
  MemberUse use;
  use.object = BindObject(std::move(place), object.range);
  use.member = member.text;
  use.owner = Spelling(type);
  use.where = member.range;
  return use;
}

BindingPtr Compiler::BindObject(Place place, const SourceRange& range) {
  const auto bind_value = [&](Carrier carrier, NodePtr node) {
    if (carrier == kObjectCarrier) return MakeObjectBinding(std::move(node));
    if (carrier == TypeName::kVoid) Fail(range, "this has no value");
    return MakeValueBinding(carrier, std::move(node), range);
  };
  return std::visit(
      Overloaded{
          [&](Place::Computed& value) { return bind_value(value.carrier, std::move(value.node)); },
          [&](Place::Variable& variable) {
            return MakeVariableBinding(place.type.name, variable.at, range);
          },
          [&](Place::Element& element) {
            return MakeElementBinding(element.carrier, std::move(element.node), range);
          },
          [&](Place::Object& object) { return MakeObjectBinding(std::move(object.node)); },
          [&](Place::MatrixRow& matrix) {
            return MakeObjectBinding(
                MakeArrayItem(std::move(matrix.matrix), std::move(matrix.row), range));
          },
          [&](Place::Property&) {
            Value value = Load(std::move(place), range);
            return bind_value(value.carrier, std::move(value.node));
          },
      },
      place.what);
}

ArgumentPtr Compiler::PassArgument(Place place, const Parameter* parameter,
                                   const SourceRange& range) {
  if (place.type.is_null) return MakeNullArgument();
  if (place.type.IsVoid()) Fail(range, "this has no value");
  const bool by_reference =
      parameter && (parameter->type.is_reference || parameter->type.name == TypeName::kBuffer ||
                    parameter->variadic);
  const auto* value_place = std::get_if<Place::Computed>(&place.what);
  const bool object = place.Is<Place::Object>() || place.Is<Place::MatrixRow>() ||
                      (value_place && value_place->carrier == kObjectCarrier);
  if (object) return MakeObjectArgument(BindObject(std::move(place), range), by_reference);
  const bool writable = place.IsStored() && by_reference && !parameter->variadic;
  if (writable && place.is_const && !parameter->type.is_const) {
    Fail(range, "a constant cannot be passed by reference");
  }
  if (writable) return MakeObjectArgument(BindObject(std::move(place), range), true);
  if (place.type.IsPoint()) {
    return MakeObjectArgument(BindObject(std::move(place), range), false);
  }
  Value value = Load(std::move(place), range);
  if (value.carrier == kObjectCarrier) {
    return MakeObjectArgument(MakeObjectBinding(std::move(value.node)), by_reference);
  }
  // A char parameter is told from a text by what it is given, so that is what it is given.
  return MakeValueArgument(value.carrier, std::move(value.node));
}

// Defaults are literals of the catalogue's own text.
ArgumentPtr Compiler::PassDefault(const Parameter& parameter) {
  return PassArgument(Reach(*parameter.default_value), &parameter, {});
}

void Compiler::PassArguments(MemberUse& use, const std::vector<ExpressionPtr>& arguments,
                             const std::vector<const CatalogueMember*>& overloads) {
  std::vector<Place> places;
  for (const ExpressionPtr& argument : arguments) places.push_back(Reach(*argument));
  const CatalogueMember& member = **std::ranges::max_element(
      overloads, {}, [&](const CatalogueMember* overload) { return Fit(*overload, places); });
  const auto& parameters = member.parameters;
  for (std::size_t i = 0; i < places.size(); ++i) {
    const Parameter* parameter = nullptr;
    if (i < parameters.size()) {
      parameter = &parameters[i];
    } else if (member.IsVariadic()) {
      parameter = &parameters.back();
    }
    use.arguments.push_back(PassArgument(std::move(places[i]), parameter, arguments[i]->range));
  }
  if (places.size() < member.RequiredCount()) return;
  for (std::size_t i = places.size(); i < parameters.size(); ++i) {
    if (!parameters[i].default_value) break;
    use.arguments.push_back(PassDefault(parameters[i]));
  }
}

namespace {

// A result that is memory of the object has no use in a script yet.
StaticType ResultType(const CatalogueMember& member) {
  return member.type.pointers > 0 ? StaticType{} : Resolve(member.type);
}

}  // namespace

Place Compiler::Visit(const Member& access, const SourceRange& range) {
  if (access.through_pointer) Fail(range, "pointers are not supported yet");
  StaticType owner;
  std::vector<const CatalogueMember*> found;
  MemberUse use = UseMember(*access.object, access.member, owner, found);
  const CatalogueMember& member = *found.front();
  if (member.is_method) {
    Fail(access.member.range, "'" + access.member.text + "' is a function; call it with ()");
  }
  return {Resolve(member.type), member.IsReadOnly(), Place::Property{std::move(use)}};
}

Place Compiler::Visit(const MemberCall& call, const SourceRange& range) {
  if (call.through_pointer) Fail(range, "pointers are not supported yet");
  StaticType owner;
  std::vector<const CatalogueMember*> found;
  MemberUse use = UseMember(*call.object, call.member, owner, found);
  if (!found.front()->is_method) {
    Fail(call.member.range, "'" + call.member.text + "' is no function");
  }
  PassArguments(use, call.arguments, found);
  // Overloads differ in their parameters, not in their results.
  const StaticType type = ResultType(*found.front());
  const Carrier carrier = CarrierOf(type);
  return AsPlace({type, carrier, MakeMethodCall(std::move(use), carrier, ObjectTypeOf(type))});
}

}  // namespace tesselc

#include <algorithm>

#include "tesselc/compile/compiler.h"
#include "tesselc/similar_name.h"

namespace tesselc {
namespace {

StaticType WantedType(const Parameter& parameter) {
  const TypeName name = parameter.type.name;
  return {name, IsTemplate(name) ? parameter.type.element : TypeName::kVoid};
}

bool Writes(const Parameter& parameter) {
  const Type& type = parameter.type;
  return (type.is_reference || type.name == TypeName::kBuffer) && !type.is_const;
}

// What a signature tells apart. The rest is for the member to say: a number of another type, a
// vector of other elements.
enum class Family { kAnything, kNumber, kText, kTexts, kVector, kMatrix, kPoint, kOther };

Family FamilyOf(const StaticType& type) {
  if (type.is_array || type.is_null || type.IsVariant()) return Family::kAnything;
  if (type.name == TypeName::kAny || type.name == TypeName::kBuffer) return Family::kAnything;
  if (type.IsNumber() || type.IsComplex() || type.name == TypeName::kNumeric) {
    return Family::kNumber;
  }
  if (type.IsString()) return Family::kText;
  if (type.name == TypeName::kStringArray) return Family::kTexts;
  if (type.IsVector()) return Family::kVector;
  if (type.IsMatrix()) return Family::kMatrix;
  return type.IsPoint() ? Family::kPoint : Family::kOther;
}

// Whether the signature rules an argument out by its type.
bool IsRuledOut(const Parameter& parameter, const StaticType& argument) {
  const StaticType wanted = WantedType(parameter);
  const Family given = FamilyOf(argument);
  const Family family = FamilyOf(wanted);
  if (given == Family::kAnything || family == Family::kAnything) return false;
  if (CanReferTo(wanted, argument)) return false;
  if (wanted.name == TypeName::kNumeric && given == Family::kPoint) return false;
  if (family == Family::kText && argument.name == TypeName::kChar) return false;
  return given != family || given == Family::kOther;
}

bool NeedsVariable(const Parameter& parameter, const Place& argument) {
  return Writes(parameter) && parameter.type.name != TypeName::kBuffer && !argument.IsStored() &&
         !argument.type.is_null && argument.type.name != TypeName::kVoid;
}

// How well an argument fits a parameter; below 0 not at all.
int Fit(const Parameter& parameter, const Place& argument) {
  const StaticType& type = argument.type;
  const StaticType wanted = WantedType(parameter);
  if (NeedsVariable(parameter, argument) || IsRuledOut(parameter, type)) return -1;
  if (wanted.name == TypeName::kAny || wanted.name == TypeName::kBuffer) return 1;
  if (type.is_null) return wanted.IsObject() ? 1 : 0;
  if (wanted == type) return 4;
  if (CanReferTo(wanted, type)) return 3;
  if (wanted.name == TypeName::kChar) return type.IsInteger() ? 2 : 0;
  if (wanted.IsNumber()) return type.IsNumber() ? 3 : 1;
  return wanted.name == TypeName::kNumeric ? 2 : 0;
}

// How well the arguments fit an overload: the count first, then each argument.
bool FitsCount(const CatalogueMember& member, std::size_t given) {
  return given >= member.RequiredCount() &&
         (given <= member.parameters.size() || member.IsVariadic());
}
int Fit(const CatalogueMember& member, const std::vector<Place>& arguments) {
  const std::size_t given = arguments.size();
  int total = FitsCount(member, given) ? 0 : -1000;
  for (std::size_t i = 0; i < std::min(given, member.parameters.size()); ++i) {
    if (member.parameters[i].variadic) break;
    const int fit = Fit(member.parameters[i], arguments[i]);
    total += fit < 0 ? -50 : fit;
  }
  return total;
}

std::string CountOf(const CatalogueMember& member) {
  const std::size_t least = member.RequiredCount(), most = member.parameters.size();
  std::string text = std::to_string(least);
  if (least != most) text += " to " + std::to_string(most);
  return text + (most == 1 ? " argument" : " arguments");
}

}  // namespace

MemberUse Compiler::UseMember(const Expression& object, const Identifier& member, StaticType& type,
                              std::vector<const CatalogueMember*>& found) {
  Place place = Reach(object);
  if (place.type.is_null) Fail(object.range, "NULL is no object");
  type = place.type;
  const bool is_const = place.is_const;
  type.is_array = false;
  const Catalogue& catalogue = Catalogue::Get();
  const CatalogueClass* owner = type.IsVoid() ? nullptr : catalogue.FindClass(type.name);
  if (owner) found = catalogue.FindMembers(owner->name, member.text);
  if (!owner) Fail(member.range, Spelling(type) + " has no members");
  if (found.empty()) {
    SimilarName similar(member.text);
    for (const std::string_view name : catalogue.MemberNames(owner->name)) {
      similar.Offer(name);
      if (name.starts_with("Get")) similar.Offer(name, name.substr(3));
    }
    Fail(member.range, Spelling(type) + " has no member '" + member.text + "'", similar.Notes());
  }
  MemberUse use;
  use.object = BindObject(std::move(place), object.range);
  use.member = member.text;
  use.owner = Spelling(type);
  use.where = member.range;
  use.is_const = is_const;
  for (const CatalogueMember* overload : found) use.signatures.push_back(overload->signature);
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
  const bool is_const = parameter && !Writes(*parameter);
  if (object) {
    if (place.is_const && parameter && Writes(*parameter)) {
      Fail(range, "a constant cannot be passed by reference");
    }
    return MakeObjectArgument(BindObject(std::move(place), range), by_reference, is_const);
  }
  const bool writable = place.IsStored() && by_reference && !parameter->variadic;
  if (writable && place.is_const && !is_const) {
    Fail(range, "a constant cannot be passed by reference");
  }
  if (writable) return MakeObjectArgument(BindObject(std::move(place), range), true, is_const);
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

// A member answers to a wrong number of arguments itself; a type that its signature rules out would
// be taken for something else.
void Compiler::CheckArguments(const MemberUse& use, const CatalogueMember& member,
                              const std::vector<ExpressionPtr>& arguments,
                              const std::vector<Place>& places) {
  if (!FitsCount(member, places.size())) {
    diagnostics_.push_back({use.where,
                            "'" + member.name + "' takes " + CountOf(member) + ", not " +
                                std::to_string(places.size()),
                            use.signatures, Diagnostic::Severity::kWarning});
    return;
  }
  for (std::size_t i = 0; i < places.size(); ++i) {
    const Parameter& parameter = member.parameters[i];
    if (parameter.variadic) return;
    const std::string which = "argument " + std::to_string(i + 1) + " of '" + member.name + "' ";
    if (IsRuledOut(parameter, places[i].type)) {
      throw ScriptMistake(arguments[i]->range, which + "cannot be " + Spelling(places[i].type),
                          use.signatures);
    }
    if (NeedsVariable(parameter, places[i])) {
      throw ScriptMistake(arguments[i]->range, which + "needs a variable", use.signatures);
    }
  }
}

void Compiler::PassArguments(MemberUse& use, const std::vector<ExpressionPtr>& arguments,
                             const std::vector<const CatalogueMember*>& overloads) {
  std::vector<Place> places;
  for (const ExpressionPtr& argument : arguments) places.push_back(Reach(*argument));
  const CatalogueMember& member = **std::ranges::max_element(
      overloads, {}, [&](const CatalogueMember* overload) { return Fit(*overload, places); });
  const auto& parameters = member.parameters;
  if (use.is_const && !member.is_const) {
    throw ScriptMistake(use.where, "'" + member.name + "' would change a constant", use.signatures);
  }
  CheckArguments(use, member, arguments, places);
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

// The host's functions are members of an object of its own, which scripts do not name.
Value Compiler::CallHost(const tesselc::Call& call) {
  constexpr const char* kClass = "host";
  const Identifier& function = call.function;
  const Catalogue& catalogue = Catalogue::Get();
  const auto found = catalogue.FindMembers(kClass, function.text);
  if (found.empty()) {
    SimilarName similar(function.text);
    for (const auto& known : functions_) similar.Offer(known.first);
    for (const std::string_view known : BuiltinNames()) similar.Offer(known);
    for (const std::string_view known : catalogue.MemberNames(kClass)) similar.Offer(known);
    Fail(function.range, "there is no function '" + function.text + "'", similar.Notes());
  }
  MemberUse use;
  use.object = MakeObjectBinding(MakeHostFunctions());
  use.member = function.text;
  use.owner = kClass;
  use.where = function.range;
  for (const CatalogueMember* overload : found) use.signatures.push_back(overload->signature);
  PassArguments(use, call.arguments, found);
  const StaticType type = ResultType(*found.front());
  const Carrier carrier = CarrierOf(type);
  return {type, carrier, MakeMethodCall(std::move(use), carrier, ObjectTypeOf(type))};
}

Place Compiler::Visit(const Member& access, const SourceRange& range) {
  if (access.through_pointer) Fail(range, "pointers are not supported yet");
  StaticType owner;
  std::vector<const CatalogueMember*> found;
  MemberUse use = UseMember(*access.object, access.member, owner, found);
  const CatalogueMember& member = *found.front();
  if (member.is_method) {
    Fail(access.member.range, "'" + access.member.text + "' is a function; call it with ()");
  }
  const bool is_const = member.IsReadOnly() || use.is_const;
  return {Resolve(member.type), is_const, Place::Property{std::move(use)}};
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

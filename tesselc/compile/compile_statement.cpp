#include <set>

#include "tesselc/compile/compiler.h"
#include "tesselc/compile/constant_expression.h"
#include "tesselc/run/elements.h"
#include "tesselc/run/range_loop.h"

namespace tesselc {

Compiler::ScopeGuard::ScopeGuard(Compiler& compiler) : compiler_(compiler) {
  compiler_.context_.levels.emplace_back();
}

Compiler::ScopeGuard::~ScopeGuard() { compiler_.context_.levels.pop_back(); }

NodePtr Compiler::ScopeGuard::Close(NodePtr body) {
  return MakeScope(std::move(body), std::move(compiler_.context_.levels.back().object_slots));
}

NodePtr Compiler::CompileGuarded(const Statement& statement) {
  try {
    return CompileStatement(statement);
  } catch (const ScriptMistake& mistake) {
    Report(mistake);
    return MakeBlock({});
  }
}

NodePtr Compiler::CompileStatement(const Statement& statement) {
  return std::visit([&](const auto& node) { return Visit(node, statement.range); }, statement.node);
}

std::vector<PlacedStatement> Compiler::CompileList(const std::vector<StatementPtr>& statements) {
  std::vector<PlacedStatement> compiled;
  for (const StatementPtr& statement : statements) {
    compiled.push_back({CompileGuarded(*statement), statement->range});
  }
  return compiled;
}

NodePtr Compiler::CompileBlock(const Statement& statement) {
  ScopeGuard scope(*this);
  return scope.Close(CompileGuarded(statement));
}

NodePtr Compiler::CompileLoopBody(const Statement& statement) {
  ++context_.loops;
  ++context_.breakables;
  NodePtr body = CompileBlock(statement);
  --context_.loops;
  --context_.breakables;
  return body;
}

NodePtr Compiler::CompileCondition(const Expression& expression) {
  return ToTruth(CompileValue(expression), expression.range);
}

NodePtr Compiler::Visit(const Block& block, const SourceRange&) {
  ScopeGuard scope(*this);
  std::vector<PlacedStatement> statements = CompileList(block.statements);
  // Memory that runs out is reported by the statement, so even a single one needs its block.
  return scope.Close(MakeBlock(std::move(statements)));
}

NodePtr Compiler::Visit(const Declaration& declaration, const SourceRange&) {
  std::vector<PlacedStatement> parts;
  for (const Variable& variable : declaration.variables) {
    try {
      CompileVariable(variable, parts);
    } catch (const ScriptMistake& mistake) {
      Report(mistake);
    }
  }
  if (parts.size() == 1) return std::move(parts.front().node);
  return MakeBlock(std::move(parts));
}

NodePtr Compiler::Visit(const ExpressionStatement& statement, const SourceRange& range) {
  Value value = CompileValue(*statement.expression);
  if (!value.node) Fail(range, "NULL is no statement");
  if (!statement.terminated && !value.type.IsVoid()) {
    return MakeEcho({value.carrier, std::move(value.node)}, range);
  }
  return std::move(value.node);
}

NodePtr Compiler::Visit(const If& statement, const SourceRange&) {
  std::vector<std::pair<NodePtr, NodePtr>> branches;
  for (const If::Branch& branch : statement.branches) {
    NodePtr condition;
    try {
      condition = CompileCondition(*branch.condition);
    } catch (const ScriptMistake& mistake) {
      Report(mistake);
      condition = MakeConstant(0);
    }
    branches.emplace_back(std::move(condition), CompileBlock(*branch.body));
  }
  NodePtr otherwise = statement.otherwise ? CompileBlock(*statement.otherwise) : nullptr;
  return MakeIf(std::move(branches), std::move(otherwise));
}

NodePtr Compiler::Visit(const While& statement, const SourceRange&) {
  NodePtr condition = CompileCondition(*statement.condition);
  return MakeWhile(std::move(condition), CompileLoopBody(*statement.body));
}

NodePtr Compiler::Visit(const DoWhile& statement, const SourceRange&) {
  NodePtr body = CompileLoopBody(*statement.body);
  return MakeDoWhile(std::move(body), CompileCondition(*statement.condition));
}

NodePtr Compiler::Visit(const For& statement, const SourceRange&) {
  ScopeGuard scope(*this);
  NodePtr initializer, condition, step;
  if (statement.initializer) initializer = CompileGuarded(*statement.initializer);
  if (statement.condition) condition = CompileCondition(*statement.condition);
  if (statement.step) {
    Value value = CompileValue(*statement.step);
    if (!value.node) Fail(statement.step->range, "NULL is no statement");
    step = std::move(value.node);
  }
  NodePtr body = CompileLoopBody(*statement.body);
  return scope.Close(
      MakeFor(std::move(initializer), std::move(condition), std::move(step), std::move(body)));
}

// The loop's own variable takes the element, and gives it back in a loop by reference.
void Compiler::CompileRound(const RangeFor& statement, const Symbol& symbol,
                            const std::function<Place()>& element, RangeLoop& loop) {
  const SourceRange& where = statement.range->range;
  Place variable = Visit(Name{statement.name.text}, statement.name.range);
  variable.is_const = false;
  std::vector<PlacedStatement> load;
  if (symbol.type.IsObject()) {
    load.push_back(
        {MakeDeclareObject(symbol.object, ObjectTypeOf(symbol.type), nullptr, where), where});
  }
  load.push_back(
      {AssignTo(std::move(variable), std::nullopt, Load(element(), where), where).node, where});
  loop.load = MakeBlock(std::move(load));
  if (statement.type.is_reference && !statement.type.is_const) {
    Value value = Load(Visit(Name{statement.name.text}, statement.name.range), where);
    loop.store = AssignTo(element(), std::nullopt, std::move(value), where).node;
  }
}

NodePtr Compiler::Visit(const RangeFor& statement, const SourceRange&) {
  ScopeGuard scope(*this);
  const SourceRange& where = statement.range->range;
  Place range_place = Reach(*statement.range);
  if (range_place.is_const && statement.type.is_reference && !statement.type.is_const) {
    Fail(statement.type.range, "the elements of a constant need a reference to const");
  }
  Value container = Load(std::move(range_place), where);
  const StaticType walked = container.type;
  const bool texts = walked.name == TypeName::kStringArray;
  if (!walked.is_array && !walked.IsContainer() && !texts) {
    Fail(where, Spelling(walked) + " cannot be walked over");
  }

  RangeLoop loop;
  loop.container = std::move(container.node);
  loop.object = context_.layout->Allocate(sizeof(ObjectReference));
  loop.position = context_.layout->Allocate(sizeof(std::int64_t));
  if (walked.is_array) loop.walk = Walk::kObjects;
  if (walked.IsMatrix()) {
    loop.walk = Walk::kCells;
    loop.column = context_.layout->Allocate(sizeof(std::int64_t));
  }
  loop.where = where;
  const auto element = [&] {
    NodePtr object = MakeLoadObject(ObjectPlace::Reference(loop.object), {}, where);
    NodePtr index = MakeLoad(TypeName::kInt64, VariablePlace::Local(loop.position));
    if (walked.IsMatrix()) {
      NodePtr column = MakeLoad(TypeName::kInt64, VariablePlace::Local(loop.column));
      return CellOf(walked, std::move(object), std::move(index), std::move(column), where);
    }
    if (!walked.is_array) return ElementOf(walked, std::move(object), std::move(index), where);
    Place array{walked, false, Place::Object{std::move(object), nullptr}};
    return IndexArray(std::move(array), std::move(index), where);
  };

  const StaticType type = Resolve(statement.type);
  if (!type.IsScalar() && !type.IsString() && type != element().type) {
    Fail(statement.type.range, "the elements are not of type " + Spelling(type));
  }
  if (statement.type.is_reference && type != element().type) {
    Fail(statement.type.range,
         "the elements are of type " + Spelling(element().type) + ", not " + Spelling(type));
  }
  const bool refers = statement.type.is_reference && type.IsScalar();
  Symbol& symbol = DeclareVariable(statement.name, type, statement.type.is_const, refers);
  if (refers) {
    loop.reference = context_.layout->Allocate(sizeof(ScalarReference));
    symbol.variable = VariablePlace::Reference(loop.reference);
    loop.element = AsReferable(type.name, std::move(std::get<Place::Element>(element().what).node));
  } else {
    CompileRound(statement, symbol, element, loop);
  }
  loop.body = CompileLoopBody(*statement.body);
  return scope.Close(MakeRangeLoop(std::move(loop)));
}

std::int64_t Compiler::CaseValue(const Expression& expression) {
  Value value = CompileValue(expression);
  if (!value.type.IsInteger()) Fail(expression.range, "a case needs an integer");
  NodePtr number = ToNumber(std::move(value), TypeName::kInt64, expression.range);
  if (auto* constant = dynamic_cast<Constant<std::int64_t>*>(number.get())) {
    return constant->value();
  }
  // Negative numbers and sums of constants: what needs no variable can be computed now.
  if (!IsConstantExpression(expression)) Fail(expression.range, "a case needs a constant");
  Frame none{nullptr, nullptr};
  return static_cast<ValueNode<std::int64_t>&>(*number).Eval(none);
}

NodePtr Compiler::Visit(const Switch& statement, const SourceRange&) {
  ScopeGuard scope(*this);
  context_.levels.back().is_switch = true;
  Value subject = CompileValue(*statement.subject);
  if (!subject.type.IsInteger()) Fail(statement.subject->range, "a switch needs an integer");
  NodePtr number = ToNumber(std::move(subject), TypeName::kInt64, statement.subject->range);
  std::vector<SwitchCase> cases;
  std::set<std::int64_t> seen;
  std::optional<std::size_t> other;
  std::vector<PlacedStatement> statements;
  ++context_.breakables;
  for (const Switch::Section& section : statement.sections) {
    for (const Switch::Label& label : section.labels) {
      try {
        if (!label.value) {
          if (other) Fail(label.range, "there is a default already");
          other = statements.size();
          continue;
        }
        const std::int64_t value = CaseValue(*label.value);
        if (!seen.insert(value).second) Fail(label.value->range, "there is this case already");
        cases.push_back({value, statements.size()});
      } catch (const ScriptMistake& mistake) {
        Report(mistake);
      }
    }
    for (PlacedStatement& part : CompileList(section.statements)) {
      statements.push_back(std::move(part));
    }
  }
  --context_.breakables;
  return scope.Close(MakeSwitch(std::move(number), std::move(cases), other, std::move(statements)));
}

NodePtr Compiler::Visit(const Break&, const SourceRange& range) {
  if (context_.breakables == 0) Fail(range, "there is no loop or switch to break");
  return MakeJump(Flow::kBreak);
}

NodePtr Compiler::Visit(const Continue&, const SourceRange& range) {
  if (context_.loops == 0) Fail(range, "there is no loop to continue");
  return MakeJump(Flow::kContinue);
}

NodePtr Compiler::Visit(const Return& statement, const SourceRange& range) {
  if (!context_.function) Fail(range, "return is for functions; exit() ends the script");
  const StaticType& type = context_.function->result;
  if (type.IsVoid()) {
    if (statement.value) Fail(statement.value->range, "the function returns nothing");
    return MakeReturn();
  }
  if (!statement.value) Fail(range, "the function returns a value of type " + Spelling(type));
  Value value = CompileReturned(*statement.value, type);
  return MakeReturnValue(value.carrier, std::move(value.node));
}

Value Compiler::CompileReturned(const Expression& expression, const StaticType& type) {
  const SourceRange& range = expression.range;
  Place place = Reach(expression);
  // An object of the function's own goes to the caller as it is.
  auto* object = std::get_if<Place::Object>(&place.what);
  const bool own = object && object->variable && place.type == type &&
                   object->variable->object.mode == ObjectPlace::Mode::kLocal;
  if (own && !type.IsString()) return {type, kObjectCarrier, MakeKeep(std::move(object->node))};
  Value value = Load(std::move(place), range);
  if (type.IsScalar()) return Convert(std::move(value), type, range);
  if (type.IsString()) {
    value = Convert(std::move(value), type, range);
    return {type, kTextCarrier, ToText(std::move(value), range)};
  }
  return {type, kObjectCarrier, ToOwnedObject(std::move(value), type, range)};
}

NodePtr Compiler::Visit(const Try& statement, const SourceRange&) {
  NodePtr body = CompileBlock(*statement.body);
  ScopeGuard scope(*this);
  const Symbol& symbol =
      DeclareVariable(statement.status, StaticType::Of(TypeName::kInt), false, false);
  const std::uint32_t offset = symbol.variable.offset;
  NodePtr handler = CompileBlock(*statement.handler);
  return scope.Close(MakeTry(std::move(body), offset, std::move(handler)));
}

NodePtr Compiler::Visit(const Empty&, const SourceRange&) { return MakeBlock({}); }

}  // namespace tesselc

#include "tesselc/compile/compiler.h"
#include "tesselc/run/elements.h"
#include "tesselc/run/objects.h"
#include "tesselc/run/resize.h"

namespace tesselc {

void Compiler::CompileVariable(const Variable& variable, std::vector<PlacedStatement>& out) {
  StaticType type = Resolve(variable.type);
  if (type.IsVoid()) Fail(variable.type.range, "a variable cannot be void");
  type.is_array = variable.is_array;
  if (variable.type.is_reference) return DeclareReference(variable, type, out);
  if (type.IsScalar()) return DeclareScalar(variable, type, out);
  DeclareObject(variable, type, out);
}

Symbol& Compiler::DeclareVariable(const Identifier& name, const StaticType& type, bool is_const,
                                  bool is_reference) {
  const bool global = context_.levels.empty();
  auto& symbols = global ? globals_.symbols : context_.levels.back().symbols;
  auto [entry, added] = symbols.try_emplace(name.text);
  if (!added && global && options_.interactive) {
    // The same storage, where functions may refer to it; a new one for another type.
    Symbol& known = entry->second;
    known.is_const = is_const;
    if (known.type == type) return known;
    symbols.erase(entry);
    entry = symbols.try_emplace(name.text).first;
    added = true;
  }
  if (!added) Fail(name.range, "there is a variable '" + name.text + "' already");
  if (global && functions_.contains(name.text)) {
    symbols.erase(entry);
    Fail(name.range, "'" + name.text + "' is a function already");
  }
  Symbol& symbol = entry->second;
  symbol.type = type;
  symbol.is_const = is_const;
  FrameLayout& layout = *context_.layout;
  if (type.IsScalar()) {
    symbol.variable = is_reference ? VariablePlace::Reference(0)
                      : global     ? VariablePlace::Global(globals_.Allocate(false))
                                   : VariablePlace::Local(layout.Allocate(ScalarSize(type.name)));
  } else if (is_reference) {
    symbol.object = ObjectPlace::Reference(layout.Allocate(sizeof(ObjectReference)));
  } else if (global) {
    symbol.object = ObjectPlace::Global(globals_.Allocate(true));
  } else {
    symbol.object = ObjectPlace::Local(layout.Allocate(sizeof(void*)));
    context_.levels.back().object_slots.push_back(symbol.object.offset);
  }
  return symbol;
}

void Compiler::DeclareReference(const Variable& variable, const StaticType& type,
                                std::vector<PlacedStatement>& out) {
  const SourceRange& range = variable.name.range;
  if (context_.levels.empty()) Fail(range, "a reference cannot be global");
  if (context_.levels.back().is_switch) {
    Fail(range, "a reference in a case needs a block of its own");
  }
  if (variable.form != Variable::Form::kAssigned || variable.is_array) {
    Fail(range, "a reference needs a variable to refer to");
  }
  Place target = Reach(*variable.initializer);
  auto* object = std::get_if<Place::Object>(&target.what);
  const auto* scalar = std::get_if<Place::Variable>(&target.what);
  if ((!object && !scalar) || !CanReferTo(type, target.type)) {
    Fail(variable.initializer->range,
         "a reference to " + Spelling(type) + " needs a variable of that type");
  }
  if (target.is_const && !variable.type.is_const) {
    Fail(variable.initializer->range, "a constant needs a reference to const");
  }
  Symbol& symbol = DeclareVariable(variable.name, type, variable.type.is_const, true);
  if (object) {
    out.push_back({MakeBindReference(symbol.object.offset, std::move(object->node)), range});
  } else {
    symbol.variable = scalar->at;  // another name for the same place
  }
}

void Compiler::DeclareScalar(const Variable& variable, const StaticType& type,
                             std::vector<PlacedStatement>& out) {
  const SourceRange& range = variable.name.range;
  Value value;
  // The name is declared even when its value is faulty, so that its uses are not.
  std::optional<ScriptMistake> mistake;
  try {
    if (variable.form == Variable::Form::kAssigned) {
      value = Convert(CompileValue(*variable.initializer), type, variable.initializer->range);
    } else if (variable.form == Variable::Form::kArguments) {
      value = ConstructScalar(type, variable.arguments, range);
    }
  } catch (const ScriptMistake& caught) {
    mistake = caught;
  }
  const Symbol& symbol = DeclareVariable(variable.name, type, variable.type.is_const, false);
  if (mistake) throw *mistake;
  out.push_back({value.node ? MakeStore(type.name, symbol.variable, std::move(value.node))
                            : MakeFill(type.name, symbol.variable, options_.fill),
                 range});
}

void Compiler::DeclareObject(const Variable& variable, const StaticType& type,
                             std::vector<PlacedStatement>& out) {
  const SourceRange& range = variable.name.range;
  if (type.is_array && !CanBeArray(type.Item())) {
    Fail(range, "there are no arrays of " + Spelling(type.Item()));
  }
  const InitializerList* list = nullptr;
  if (variable.initializer) list = std::get_if<InitializerList>(&variable.initializer->node);
  NodePtr count;
  std::optional<ScriptMistake> mistake;
  try {
    if (variable.array_size) {
      count = ToIndex(*variable.array_size);
    } else if (variable.is_array) {
      if (!list || list->items.empty()) Fail(range, "an array needs a size or a list of values");
      count = MakeConstant(static_cast<std::int64_t>(list->items.size()));
    }
  } catch (const ScriptMistake& caught) {
    mistake = caught;
  }
  const Symbol& symbol = DeclareVariable(variable.name, type, variable.type.is_const, false);
  if (mistake) throw *mistake;
  out.push_back(
      {MakeDeclareObject(symbol.object, ObjectTypeOf(type), std::move(count), range), range});
  if (list) {
    InitializeByList(*list, symbol, variable.initializer->range, out);
  } else {
    InitializeObject(variable, symbol, out);
  }
}

NodePtr Compiler::LoadSymbol(const Symbol& symbol, std::string_view name,
                             const SourceRange& range) {
  return MakeLoadObject(symbol.object, std::string(name), range);
}

void Compiler::InitializeObject(const Variable& variable, const Symbol& symbol,
                                std::vector<PlacedStatement>& out) {
  if (variable.form == Variable::Form::kDefault) return;
  const SourceRange& range = variable.name.range;
  const Expression* value = variable.initializer.get();
  if (variable.form == Variable::Form::kArguments) {
    const bool sizes = symbol.type.IsContainer() || symbol.type.name == TypeName::kStringArray ||
                       symbol.type.name == TypeName::kDeviceContext;
    if (symbol.type.is_array || variable.arguments.empty() || variable.arguments.size() > 2) {
      Fail(range, "too many values for " + Spelling(symbol.type));
    }
    Place first = Reach(*variable.arguments.front());
    if (sizes && first.type.IsNumber()) return InitializeByArguments(variable, symbol, out);
    if (variable.arguments.size() > 1) Fail(range, "too many values for " + Spelling(symbol.type));
    value = variable.arguments.front().get();
  }
  Place target{symbol.type, false,
               Place::Object{LoadSymbol(symbol, variable.name.text, range), &symbol}};
  Value source = CompileValue(*value);
  // A container starts as a value of its own type; a number would fill an existing one.
  if (symbol.type.IsContainer() && !source.type.IsContainer() && !source.type.IsVariant()) {
    Fail(value->range, "cannot convert " + Spelling(source.type) + " to " + Spelling(symbol.type));
  }
  out.push_back(
      {AssignTo(std::move(target), std::nullopt, std::move(source), value->range).node, range});
}

void Compiler::InitializeByArguments(const Variable& variable, const Symbol& symbol,
                                     std::vector<PlacedStatement>& out) {
  const bool is_flat = symbol.type.IsMatrix() || symbol.type.name == TypeName::kDeviceContext;
  const std::size_t wanted = is_flat ? 2 : 1;
  const SourceRange& range = variable.name.range;
  if (variable.arguments.size() != wanted) {
    Fail(range, Spelling(symbol.type) + " takes " + std::to_string(wanted) +
                    (wanted == 1 ? " size" : " sizes"));
  }
  std::vector<NodePtr> sizes;
  for (const ExpressionPtr& argument : variable.arguments) sizes.push_back(ToIndex(*argument));
  out.push_back({SetSize(symbol, std::move(sizes), range), range});
}

NodePtr Compiler::SetSize(const Symbol& symbol, std::vector<NodePtr> sizes,
                          const SourceRange& range) {
  return MakeSetSize(LoadSymbol(symbol, {}, range), std::move(sizes), range);
}

Place Compiler::ElementAt(const Symbol& symbol, const std::vector<std::size_t>& indices,
                          const SourceRange& range) {
  const auto index = [](std::size_t i) { return MakeConstant(static_cast<std::int64_t>(i)); };
  NodePtr object = LoadSymbol(symbol, {}, range);
  if (symbol.type.is_array) {
    Place array{symbol.type, false, Place::Object{std::move(object), &symbol}};
    return IndexArray(std::move(array), index(indices[0]), range);
  }
  if (symbol.type.IsMatrix()) {
    return CellOf(symbol.type, std::move(object), index(indices[0]), index(indices[1]), range);
  }
  return ElementOf(symbol.type, std::move(object), index(indices[0]), range);
}

void Compiler::InitializeByList(const InitializerList& list, const Symbol& symbol,
                                const SourceRange& range, std::vector<PlacedStatement>& out) {
  const StaticType& type = symbol.type;
  const auto size = [](std::size_t n) { return MakeConstant(static_cast<std::int64_t>(n)); };
  const auto set = [&](const Expression& item, const std::vector<std::size_t>& indices) {
    Value value = CompileValue(item);
    Place element = ElementAt(symbol, indices, item.range);
    // NULL, numbers and texts convert as in an assignment.
    out.push_back({AssignTo(std::move(element), std::nullopt, std::move(value), item.range).node,
                   item.range});
  };
  const auto& items = list.items;
  if (type.IsMatrix() && type.element != TypeName::kVoid) {
    std::size_t columns = 0;
    for (std::size_t row = 0; row < items.size(); ++row) {
      const auto* cells = std::get_if<InitializerList>(&items[row]->node);
      if (!cells) Fail(items[row]->range, "each row of a matrix is a list in braces");
      if (row == 0) columns = cells->items.size();
      if (cells->items.size() != columns) {
        Fail(items[row]->range, "every row needs " + std::to_string(columns) + " values");
      }
    }
    std::vector<NodePtr> sizes;
    sizes.push_back(size(items.size()));
    sizes.push_back(size(columns));
    out.push_back({SetSize(symbol, std::move(sizes), range), range});
    for (std::size_t row = 0; row < items.size(); ++row) {
      const auto& cells = std::get<InitializerList>(items[row]->node).items;
      for (std::size_t column = 0; column < columns; ++column) set(*cells[column], {row, column});
    }
    return;
  }
  const bool vector = type.IsVector() && type.element != TypeName::kVoid;
  const bool texts = type.name == TypeName::kStringArray && !type.is_array;
  if (!type.is_array && !vector && !texts) {
    Fail(range, Spelling(type) + " cannot be initialised by a list");
  }
  if (!type.is_array) {
    std::vector<NodePtr> sizes;
    sizes.push_back(size(items.size()));
    out.push_back({SetSize(symbol, std::move(sizes), range), range});
  }
  for (std::size_t i = 0; i < items.size(); ++i) set(*items[i], {i});
}

}  // namespace tesselc

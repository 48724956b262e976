#include <algorithm>

#include "tesselc/compile/compiler.h"

namespace tesselc {

Compiler::Compiler(Globals& globals, const CompilerOptions& options)
    : globals_(globals), options_(options) {}

std::vector<Diagnostic> Compiler::TakeDiagnostics() {
  std::ranges::stable_sort(diagnostics_, [](const Diagnostic& a, const Diagnostic& b) {
    return std::pair(a.range.file, a.range.offset) < std::pair(b.range.file, b.range.offset);
  });
  return std::move(diagnostics_);
}

StaticType Compiler::TypeOfGlobal(std::string_view name) const {
  const auto found = globals_.symbols.find(name);
  return found == globals_.symbols.end() ? StaticType{} : found->second.type;
}

std::vector<std::string> Compiler::GlobalNames() const {
  std::vector<std::string> names;
  for (const auto& symbol : globals_.symbols) names.push_back(symbol.first);
  for (const auto& function : functions_) names.push_back(function.first);
  return names;
}

CompiledScript Compiler::Compile(const Program& program) {
  const auto functions = functions_;
  const auto symbols = globals_.symbols;
  CompiledScript script;
  DeclareFunctions(program, script);
  CompileTopLevel(program, script);
  for (Signature& signature : script.functions) {
    if (signature.declaration->body) CompileBody(signature);
  }
  for (auto& redefined : redefined_) CompileBody(*redefined.first);
  if (HasErrors(diagnostics_)) {
    for (auto& [known, former] : redefined_) *known = std::move(former);
    functions_ = functions;
    globals_.symbols = symbols;
  }
  redefined_.clear();
  const auto found = functions_.find("main");
  if (found != functions_.end()) script.main = &found->second->compiled;
  return script;
}

void Compiler::DeclareFunctions(const Program& program, CompiledScript& script) {
  for (const Function& function : program.functions) {
    try {
      DeclareFunction(function, script);
    } catch (const ScriptMistake& mistake) {
      Report(mistake);
    }
  }
  for (const auto& [name, signature] : functions_) {
    if (!signature->declaration->body) {
      Report(ScriptMistake(signature->declaration->name.range,
                           "'" + name + "' is declared but never defined"));
    }
  }
}

namespace {

Signature MakeSignature(const Function& function) {
  Signature signature;
  signature.declaration = &function;
  signature.result = Resolve(function.result);
  if (function.result.is_reference) {
    throw ScriptMistake(function.result.range, "a function cannot return a reference");
  }
  bool has_defaults = false;
  for (const Parameter& declared : function.parameters) {
    if (has_defaults && !declared.default_value) {
      throw ScriptMistake(declared.type.range,
                          "a parameter after one with a default needs one too");
    }
    has_defaults = declared.default_value != nullptr;
    Signature::Parameter parameter;
    parameter.type = Resolve(declared.type);
    parameter.by_reference = declared.type.is_reference;
    parameter.is_const = declared.type.is_const;
    if (parameter.type.IsVoid())
      throw ScriptMistake(declared.type.range, "a parameter cannot be void");
    const std::uint32_t size =
        parameter.type.IsScalar()
            ? parameter.by_reference ? sizeof(ScalarReference) : ScalarSize(parameter.type.name)
        : parameter.by_reference ? sizeof(ObjectReference)
                                 : sizeof(void*);
    parameter.offset = signature.layout.Allocate(size);
    if (!parameter.type.IsScalar() && !parameter.by_reference) {
      signature.compiled.owned_slots.push_back(parameter.offset);
    }
    signature.parameters.push_back(parameter);
  }
  signature.compiled.name = function.name.text;
  signature.compiled.result = CarrierOf(signature.result);
  return signature;
}

bool SameTypes(const Signature& a, const Signature& b) {
  const auto same = [](const Signature::Parameter& p, const Signature::Parameter& q) {
    return p.type == q.type && p.by_reference == q.by_reference;
  };
  return a.result == b.result && std::ranges::equal(a.parameters, b.parameters, same);
}

void CheckMain(const Signature& signature) {
  const Function& function = *signature.declaration;
  if (!function.parameters.empty()) {
    throw ScriptMistake(function.name.range, "main takes no parameters; use args");
  }
  if (!signature.result.IsVoid() && signature.result != StaticType::Of(TypeName::kInt)) {
    throw ScriptMistake(function.result.range, "main returns int or void");
  }
}

}  // namespace

void Compiler::DeclareFunction(const Function& function, CompiledScript& script) {
  Signature signature = MakeSignature(function);
  const std::string& name = function.name.text;
  if (name == "main") {
    CheckMain(signature);
    signature.compiled.is_main = true;
  }
  const auto found = functions_.find(name);
  if (found == functions_.end()) {
    functions_[name] = &script.functions.emplace_back(std::move(signature));
    return;
  }
  Signature& known = *found->second;
  if (!SameTypes(known, signature)) {
    Fail(function.name.range, "'" + name + "' was declared with other types before");
  }
  if (!function.body) return;
  if (!known.declaration->body) {
    known = std::move(signature);
  } else if (options_.interactive) {
    Redefine(known, std::move(signature));
  } else {
    Fail(function.name.range, "'" + name + "' is defined already");
  }
}

// In its place, as calls refer to it.
void Compiler::Redefine(Signature& known, Signature&& signature) {
  redefined_.emplace_back(&known, std::exchange(known, std::move(signature)));
}

void Compiler::CompileTopLevel(const Program& program, CompiledScript& script) {
  FrameLayout layout;
  context_ = {};
  context_.layout = &layout;
  script.top_level.name = "the script";
  script.top_level.body = MakeBlock(CompileList(program.statements));
  script.top_level.frame_size = layout.size();
}

void Compiler::DeclareParameters(Signature& signature) {
  auto& level = context_.levels.emplace_back();
  const auto& declared = signature.declaration->parameters;
  for (std::size_t i = 0; i < declared.size(); ++i) {
    if (declared[i].name.text.empty()) continue;
    const Signature::Parameter& parameter = signature.parameters[i];
    Symbol symbol;
    symbol.type = parameter.type;
    symbol.is_const = parameter.is_const;
    symbol.variable = parameter.by_reference ? VariablePlace::Reference(parameter.offset)
                                             : VariablePlace::Local(parameter.offset);
    symbol.object = parameter.by_reference ? ObjectPlace::Reference(parameter.offset)
                                           : ObjectPlace::Local(parameter.offset);
    if (!level.symbols.emplace(declared[i].name.text, symbol).second) {
      Report(ScriptMistake(declared[i].name.range,
                           "there is a parameter '" + declared[i].name.text + "' already"));
    }
  }
}

void Compiler::CompileBody(Signature& signature) {
  context_ = {};
  context_.layout = &signature.layout;
  context_.function = &signature;
  DeclareParameters(signature);
  signature.compiled.body = CompileGuarded(*signature.declaration->body);
  signature.compiled.frame_size = signature.layout.size();
}

}  // namespace tesselc

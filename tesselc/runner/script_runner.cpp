#include "tesselc/runner/script_runner.h"

#include <new>
#include <utility>

#include "frame/interface/script_object.h"
#include "tesselc/compile/compiler.h"
#include "tesselc/parser.h"
#include "tesselc/run/interrupt.h"
#include "tesselc/run/run.h"
#include "tesselc/run/terminal.h"

namespace tesselc {
namespace {

constexpr const char* kArgumentsName = "args";

void DeclareArguments(Globals& globals) {
  Symbol symbol;
  symbol.type = StaticType::Of(TypeName::kStringArray);
  symbol.object = ObjectPlace::Global(globals.Allocate(true));
  globals.symbols.emplace(kArgumentsName, symbol);
}

void FillArguments(Run& run, const Globals& globals, const std::vector<std::string>& arguments) {
  const Symbol& symbol = globals.symbols.find(kArgumentsName)->second;
  vela::host::ObjectRef object =
      run.Create(ObjectTypeOf(symbol.type).type_word, 0, "StringArray", {});
  for (const std::string& argument : arguments) {
    CallFrameLease call(run);
    call->AddText(argument.c_str());
    CallMethod(*object, "Add", *call, {});
  }
  object->AddRef();
  *symbol.object.address = object.Get();
}

// Runs a function that takes no arguments and gives an int or nothing.
int CallTopLevel(Run& run, const CompiledFunction& function) {
  int result = 0;
  const FrameLease frame(run, function.frame_size, {});
  Frame top{frame.base(), &run, function.result == TypeName::kVoid ? nullptr : &result};
  function.body->Exec(top);
  return result;
}

// Its own notes and the calls that led there.
std::vector<std::string> NotesOf(const ScriptError& error, const SourceSet& sources) {
  std::vector<std::string> notes = error.notes();
  for (const ScriptError::Call& call : error.calls()) {
    if (error.skipped_calls() > 0 && &call == &error.calls().back()) {
      // How deep a recursion can go depends on the machine.
      const std::size_t skipped = error.skipped_calls();
      notes.push_back("... " + (skipped < 1000 ? std::to_string(skipped) : "thousands of") +
                      " more calls ...");
    }
    notes.push_back("in '" + call.function + "', called at " + FormatPlace(call.where, sources));
  }
  return notes;
}

}  // namespace

ScriptRunner::ScriptRunner(Output& output, RunnerOptions options)
    : output_(output),
      options_(std::move(options)),
      colours_(WantsColours(stderr) ? Colours::kOn : Colours::kOff) {}

void ScriptRunner::Report(const std::vector<Diagnostic>& diagnostics) {
  constexpr std::ptrdiff_t kMostErrors = 20;
  std::ptrdiff_t errors = 0;
  for (const Diagnostic& diagnostic : diagnostics) {
    if (diagnostic.severity == Diagnostic::Severity::kError && ++errors > kMostErrors) continue;
    output_.WriteError(Format(diagnostic, sources_, colours_));
  }
  if (errors > kMostErrors) {
    output_.WriteError(std::to_string(errors - kMostErrors) + " more errors\n");
  }
}

void ScriptRunner::ReportError(const std::string& message) {
  output_.WriteError("tesselc: error: " + message + "\n");
}

int ScriptRunner::RunFile(const std::string& path) {
  const SourceSet::Loaded loaded = sources_.Load(path);
  if (!loaded.ok) {
    ReportError(loaded.error);
    return kMistake;
  }
  return Run(loaded.id);
}

int ScriptRunner::RunText(std::string name, std::string code) {
  return Run(sources_.Add(std::move(name), std::move(code)));
}

bool ScriptRunner::LoadLibrary() {
  if (!library_.Load()) {
    ReportError(library_.GetError());
    return false;
  }
  library_.Configure();
  library_.SetDebugMode(options_.debug_mode);
  return true;
}

int ScriptRunner::Run(FileId file) {
  if (!options_.check_only && !LoadLibrary()) return kMistake;
  ParseResult parsed = ParseProgram(sources_, file);
  Globals globals;
  DeclareArguments(globals);
  CompilerOptions compiler_options;
  compiler_options.power = library_.GetExports().power;
  compiler_options.fill = options_.debug_mode > 0 ? 0xCC : 0;
  Compiler compiler(globals, compiler_options);
  CompiledScript script;
  if (parsed.ok()) {
    script = compiler.Compile(parsed.program);
    parsed.diagnostics = compiler.TakeDiagnostics();
  }
  Report(parsed.diagnostics);
  if (HasErrors(parsed.diagnostics)) return kMistake;
  return options_.check_only ? kSuccess : Execute(script, globals);
}

int ScriptRunner::Execute(CompiledScript& script, Globals& globals) {
  try {
    tesselc::Run run(library_, output_);
    FillArguments(run, globals, options_.arguments);
    int code = kSuccess;
    try {
      const InterruptScope interruptible(output_);
      CallTopLevel(run, script.top_level);
      if (script.main) code = CallTopLevel(run, *script.main);
    } catch (const ExitRequest& request) {
      code = request.code;
    }
    // Objects can still write while they go.
    globals.ReleaseObjects();
    output_.Flush();
    if (output_.failure().empty()) return code;
    ReportError("cannot write the output: " + output_.failure());
    return code != kSuccess ? code : int{kScriptFailed};
  } catch (const ScriptError& error) {
    globals.ReleaseObjects();
    output_.WriteError(
        Format({error.where(), error.message(), NotesOf(error, sources_)}, sources_, colours_));
  } catch (const Interrupted& interrupted) {
    globals.ReleaseObjects();
    const SourceRange where = interrupted.where.value_or(SourceRange{});
    output_.WriteError(Format({where, "interrupted"}, sources_, colours_));
    return interrupted.exit_code;
  } catch (const std::bad_alloc&) {
    ReportError("out of memory");
  }
  return kScriptFailed;
}

}  // namespace tesselc

#include "tesselc/runner/script_runner.h"

#include <deque>
#include <new>
#include <utility>

#include "frame/interface/script_object.h"
#include "tesselc/compile/compiler.h"
#include "tesselc/parser.h"
#include "tesselc/prompt/prompt_help.h"
#include "tesselc/prompt/prompt_text.h"
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

CompilerOptions ScriptRunner::MakeCompilerOptions() const {
  CompilerOptions options;
  options.power = library_.GetExports().power;
  options.fill = options_.debug_mode > 0 ? 0xCC : 0;
  return options;
}

int ScriptRunner::Run(FileId file) {
  if (!options_.check_only && !LoadLibrary()) return kMistake;
  ParseResult parsed = ParseProgram(sources_, file);
  Globals globals;
  DeclareArguments(globals);
  Compiler compiler(globals, MakeCompilerOptions());
  CompiledScript script;
  if (parsed.ok()) {
    script = compiler.Compile(parsed.program);
    parsed.diagnostics = compiler.TakeDiagnostics();
  }
  Report(parsed.diagnostics);
  if (HasErrors(parsed.diagnostics)) return kMistake;
  return options_.check_only ? kSuccess : Execute(script, globals);
}

ScriptRunner::Outcome ScriptRunner::Try(const std::function<int()>& work) {
  try {
    const InterruptScope interruptible(output_);
    return {work(), false, {}};
  } catch (const ExitRequest& request) {
    return {request.code, true, {}};
  } catch (const ScriptError& error) {
    const Diagnostic diagnostic{error.where(), error.message(), NotesOf(error, sources_)};
    return {kScriptFailed, false, Format(diagnostic, sources_, colours_)};
  } catch (const Interrupted& interrupted) {
    const SourceRange where = interrupted.where.value_or(SourceRange{});
    return {interrupted.exit_code, false, Format({where, "interrupted"}, sources_, colours_)};
  } catch (const std::bad_alloc&) {
    return {kScriptFailed, false, "tesselc: error: out of memory\n"};
  }
}

int ScriptRunner::Execute(CompiledScript& script, Globals& globals) {
  tesselc::Run run(library_, output_);
  const Outcome outcome = Try([&] {
    FillArguments(run, globals, options_.arguments);
    CallTopLevel(run, script.top_level);
    return script.main ? CallTopLevel(run, *script.main) : int{kSuccess};
  });
  return End(globals, outcome);
}

int ScriptRunner::End(Globals& globals, const Outcome& outcome) {
  // Objects can still write while they go.
  globals.ReleaseObjects();
  output_.Flush();
  if (!outcome.report.empty()) output_.WriteError(outcome.report);
  if (output_.failure().empty()) return outcome.exit_code;
  ReportError("cannot write the output: " + output_.failure());
  return outcome.exit_code != kSuccess ? outcome.exit_code : int{kScriptFailed};
}

int ScriptRunner::RunPrompt(LineEditor& lines) {
  if (!LoadLibrary()) return kMistake;
  Globals globals;
  DeclareArguments(globals);
  CompilerOptions compiler_options = MakeCompilerOptions();
  compiler_options.interactive = true;
  Compiler compiler(globals, compiler_options);
  tesselc::Run run(library_, output_);
  FillArguments(run, globals, options_.arguments);
  lines.SetCompleter([&](std::string_view text) { return CompleteName(text, compiler); });
  if (lines.IsInteractive()) output_.Write(kGreeting);
  // Later programs refer to earlier ones.
  std::deque<Program> programs;
  std::deque<CompiledScript> scripts;
  PromptText text(lines, sources_, output_);
  while (const auto file =
             text.Next([&](std::string_view line) { return ShowHelp(line, compiler, output_); })) {
    ParseResult parsed = ParsePrompt(sources_, *file);
    if (!parsed.ok()) {
      Report(parsed.diagnostics);
      continue;
    }
    const Program& program = programs.emplace_back(std::move(parsed.program));
    CompiledScript& script = scripts.emplace_back(compiler.Compile(program));
    const std::vector<Diagnostic> diagnostics = compiler.TakeDiagnostics();
    Report(diagnostics);
    if (HasErrors(diagnostics)) continue;
    const Outcome outcome = Try([&] { return CallTopLevel(run, script.top_level); });
    if (outcome.is_exit) return End(globals, outcome);
    if (!outcome.report.empty()) output_.WriteError(outcome.report);
    output_.Flush();
  }
  return End(globals, {kSuccess, true, {}});
}

}  // namespace tesselc

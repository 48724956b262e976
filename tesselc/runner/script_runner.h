#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/library.h"
#include "tesselc/compile/compiler.h"
#include "tesselc/prompt/line_editor.h"
#include "tesselc/run/output.h"
#include "tesselc/source.h"

namespace tesselc {

// What the runner ends with, unless the script says otherwise.
enum ExitCode : int { kSuccess = 0, kScriptFailed = 1, kMistake = 2 };

struct RunnerOptions {
  bool check_only = false;
  int debug_mode = 0;
  std::vector<std::string> arguments;  // the script's
};

// Reads, checks and runs one script, and reports what goes wrong on standard error.
class ScriptRunner {
 public:
  ScriptRunner(Output& output, RunnerOptions options);

  // Both return the exit code.
  int RunFile(const std::string& path);
  int RunText(std::string name, std::string code);
  // Runs what is typed, one piece after the other, until the input ends or the script exits.
  int RunPrompt(LineEditor& lines);

 private:
  int Run(FileId file);
  bool LoadLibrary();
  int Execute(CompiledScript& script, Globals& globals);
  // How work on a script ended.
  struct Outcome {
    int exit_code;
    bool is_exit;        // by exit()
    std::string report;  // what is to be said of a failure
  };
  Outcome Try(const std::function<int()>& work);
  // Releases the objects, then reports; the exit code.
  int End(Globals& globals, const Outcome& outcome);
  CompilerOptions MakeCompilerOptions() const;
  // Shows them, errors beyond a screenful only counted.
  void Report(const std::vector<Diagnostic>& diagnostics);
  void ReportError(const std::string& message);

  Output& output_;
  RunnerOptions options_;
  Colours colours_;
  SourceSet sources_;
  vela::host::Library library_;
};

}  // namespace tesselc

#pragma once

#include <string>
#include <vector>

#include "host/library.h"
#include "tesselc/compile/compiler.h"
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

 private:
  int Run(FileId file);
  bool LoadLibrary();
  int Execute(CompiledScript& script, Globals& globals);
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

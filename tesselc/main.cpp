#include <iostream>
#include <iterator>

#include "tesselc/catalogue.h"
#include "tesselc/run/native_stack.h"
#include "tesselc/run/output.h"
#include "tesselc/runner/command_line.h"
#include "tesselc/runner/script_runner.h"

namespace tesselc {
namespace {

int ShowMembers(const std::string& filter) {
  if (!Catalogue::Get().PrintMembers(std::cout, filter)) {
    std::cerr << "tesselc: error: there is no type or member '" << filter << "'\n";
    return kMistake;
  }
  if (std::cout.flush()) return kSuccess;
  std::cerr << "tesselc: error: cannot write the output\n";
  return kScriptFailed;
}

int Work(std::vector<std::string> words) {
  CommandLine line = ParseCommandLine(std::move(words));
  if (line.exit_code) return *line.exit_code;
  if (line.members) return ShowMembers(*line.members);
  Output output;
  ScriptRunner runner(output, {line.check_only, line.debug_mode, std::move(line.arguments)});
  if (!line.code && !line.script) return runner.RunPrompt(*MakeLineEditor());
  if (line.code) return runner.RunText("-e", std::move(*line.code));
  if (*line.script != "-") return runner.RunFile(*line.script);
  std::string text(std::istreambuf_iterator<char>(std::cin), {});
  return runner.RunText("standard input", std::move(text));
}

int Main(std::vector<std::string> words) {
  try {
    return Work(std::move(words));
  } catch (const std::exception& error) {
    std::cerr << "tesselc: error: " << error.what() << "\n";
    return kMistake;
  }
}

}  // namespace
}  // namespace tesselc

int main(int argc, char** argv) {
  return tesselc::RunOnUsualStack(
      [&] { return tesselc::Main(tesselc::ProgramArguments(argc, argv)); });
}

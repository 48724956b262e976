#include "tesselc/runner/command_line.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <limits>

#include "tesselc/runner/script_runner.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace tesselc {

#if defined(_WIN32)
namespace {

std::string ToUtf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  if (size <= 0) return {};
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
  result.pop_back();
  return result;
}

}  // namespace

std::vector<std::string> ProgramArguments(int, char**) {
  int count = 0;
  wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::string> words;
  for (int i = 1; wide && i < count; ++i) words.push_back(ToUtf8(wide[i]));
  LocalFree(wide);
  return words;
}
#else
std::vector<std::string> ProgramArguments(int argc, char** argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}
#endif

CommandLine ParseCommandLine(const std::vector<std::string>& words) {
  CommandLine line;
  std::string code, members;
  CLI::App app("Runs a Tessel C script: tesselc [OPTIONS] script.tc [ARGUMENTS]", "tesselc");
  app.prefix_command();
  app.set_version_flag("--version", "tesselc " TESSELC_VERSION);
  auto* code_option = app.add_option("-e", code, "Run this code")->type_name("CODE");
  app.add_flag("--check", line.check_only, "Check the script, but do not run it");
  app.add_option("--debug-mode", line.debug_mode, "The library's debug mode")
      ->type_name("N")
      ->check(CLI::Range(0, std::numeric_limits<int>::max()));
  auto* members_option =
      app.add_option("--members", members, "Show the members of a type, or of all, and end")
          ->expected(0, 1)
          ->type_name("[TYPE[.MEMBER]]");
  try {
    std::vector<std::string> reversed(words.rbegin(), words.rend());
    app.parse(reversed);
  } catch (const CLI::ParseError& error) {
    line.exit_code = app.exit(error) == 0 ? kSuccess : kMistake;
    return line;
  }
  if (members_option->count() > 0) line.members = members;
  if (code_option->count() > 0) line.code = code;
  line.arguments = app.remaining();
  if (line.members) return line;
  if (!line.code && !line.arguments.empty()) {
    line.script = line.arguments.front();
    line.arguments.erase(line.arguments.begin());
    if (line.script->size() > 1 && line.script->front() == '-') {
      std::cerr << "tesselc: error: there is no option " << *line.script << "\n";
      line.exit_code = kMistake;
    }
  }
  return line;
}

}  // namespace tesselc

#include "tesselc/runner/command_line.h"

#include <charconv>
#include <cstring>
#include <getopt.h>
#include <iostream>

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

namespace {

constexpr const char* kHelp =
    "Runs a Tessel C script.\n"
    "Usage: tesselc [OPTIONS] SCRIPT [ARGUMENTS]\n"
    "       tesselc [OPTIONS] -e CODE [ARGUMENTS]\n"
    "       tesselc [OPTIONS]                       a prompt\n"
    "\n"
    "Options:\n"
    "  -h, --help                  Show this and end\n"
    "  --version                   Show the version and end\n"
    "  -e CODE                     Run this code\n"
    "  --check                     Check the script, but do not run it\n"
    "  --werror                    Refuse a script with warnings\n"
    "  --debug-mode N              The library's debug mode\n"
    "  --members [TYPE[.MEMBER]]   Show the members of a type, or of all, or one; and end\n";

enum Option : int { kCheck = 256, kDebugMode, kMembers, kVersion, kWarningsAreErrors };

constexpr option kOptions[] = {
    {"help", no_argument, nullptr, 'h'},
    {"version", no_argument, nullptr, kVersion},
    {"werror", no_argument, nullptr, kWarningsAreErrors},
    {"check", no_argument, nullptr, kCheck},
    {"debug-mode", required_argument, nullptr, kDebugMode},
    {"members", no_argument, nullptr, kMembers},
    {nullptr, 0, nullptr, 0},
};

// The answer that ends the program: a complaint goes to standard error.
int Answer(const std::string& text) {
  std::cout << text << std::flush;
  return std::cout ? kSuccess : kScriptFailed;
}
int Complain(const std::string& text) {
  std::cerr << "tesselc: error: " << text << "\n";
  return kMistake;
}

std::optional<int> ReadMode(const char* text) {
  int mode = -1;
  const char* end = text + std::strlen(text);
  const auto [rest, error] = std::from_chars(text, end, mode);
  if (error != std::errc() || rest != end || mode < 0) return std::nullopt;
  return mode;
}

// Takes one option; an exit code when the program ends with it.
std::optional<int> Take(int option, const char* word, CommandLine& line) {
  switch (option) {
    case 'h':
      return Answer(kHelp);
    case kVersion:
      return Answer("tesselc " TESSELC_VERSION "\n");
    case 'e':
      line.code = optarg;
      return std::nullopt;
    case kCheck:
      line.check_only = true;
      return std::nullopt;
    case kWarningsAreErrors:
      line.warnings_are_errors = true;
      return std::nullopt;
    case kDebugMode:
      if (const auto mode = ReadMode(optarg)) {
        line.debug_mode = *mode;
        return std::nullopt;
      }
      return Complain(std::string("'") + optarg + "' is no debug mode");
    case kMembers:
      line.members.emplace();
      return std::nullopt;
    case ':':
      return Complain(std::string(word) + " needs a value");
    default:
      return Complain(std::string("there is no option ") + word);
  }
}

}  // namespace

CommandLine ParseCommandLine(std::vector<std::string> words) {
  CommandLine line;
  std::string program = "tesselc";
  std::vector<char*> pointers = {program.data()};
  for (std::string& word : words) pointers.push_back(word.data());
  const int count = static_cast<int>(pointers.size());
  pointers.push_back(nullptr);
  optind = 0;  // starts anew
  opterr = 0;
  for (;;) {
    const int at = optind == 0 ? 1 : optind;
    const int option = getopt_long(count, pointers.data(), "+:he:", kOptions, nullptr);
    if (option == -1) break;
    line.exit_code = Take(option, pointers[static_cast<std::size_t>(at)], line);
    if (line.exit_code) return line;
  }
  line.arguments.assign(pointers.begin() + optind, pointers.begin() + count);
  const auto take_first = [&line] {
    std::string first = std::move(line.arguments.front());
    line.arguments.erase(line.arguments.begin());
    return first;
  };
  if (line.members) {
    if (!line.arguments.empty()) line.members = take_first();
  } else if (!line.code && !line.arguments.empty()) {
    line.script = take_first();
  }
  return line;
}

}  // namespace tesselc

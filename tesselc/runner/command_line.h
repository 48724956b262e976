#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tesselc {

// What the program was asked to do.
struct CommandLine {
  std::optional<std::string> code;     // -e
  std::optional<std::string> script;   // its path
  std::vector<std::string> arguments;  // of the script
  bool check_only = false;
  bool warnings_are_errors = false;
  int debug_mode = 0;
  std::optional<std::string> members;  // the filter of --members, which may be empty

  std::optional<int> exit_code;  // set when the answer was given already: --help, a wrong option
};

// The program's own arguments in UTF-8, without its name.
std::vector<std::string> ProgramArguments(int argc, char** argv);
// Options end at the first word that is none; what follows belongs to the script. Help and
// complaints are written at once.
CommandLine ParseCommandLine(std::vector<std::string> words);

}  // namespace tesselc

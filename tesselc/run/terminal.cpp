#include "tesselc/run/terminal.h"

#include <cstdlib>
#include <cstring>

#if defined(_WIN32)
#include <io.h>
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace tesselc {
namespace {

bool IsSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

#if defined(_WIN32)
bool IsTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

bool WantsColours(std::FILE* stream) {
  if (!IsTerminal(stream) || IsSet("NO_COLOR")) return false;
  const auto console = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) != 0 &&
         SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}
#else
bool IsTerminal(std::FILE* stream) { return isatty(fileno(stream)) != 0; }

bool WantsColours(std::FILE* stream) {
  if (!IsTerminal(stream) || IsSet("NO_COLOR")) return false;
  const char* terminal = std::getenv("TERM");
  return terminal == nullptr || std::strcmp(terminal, "dumb") != 0;
}
#endif

}  // namespace tesselc

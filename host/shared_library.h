// Loading shared libraries, and where this process's own files lie.
#pragma once

#include <string>

namespace vela::host {

// Null, with the system's reason, when the file (UTF-8 path) cannot be loaded.
void* OpenLibrary(const std::string& path, std::string& reason);
void CloseLibrary(void* library);
void* FindSymbol(void* library, const char* name);

// The folder of the running program and of the host runtime, with a separator at the end; empty
// when the system does not tell.
std::string ProgramFolder();
std::string OwnFolder();

}  // namespace vela::host

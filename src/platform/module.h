// Functions of the system's libraries by name, for those that may be absent.
#pragma once

#if defined(_WIN32)

#include "platform/automation.h"

#else

struct HINSTANCE__;
using HMODULE = HINSTANCE__*;
using FARPROC = int (*)();

#pragma GCC visibility push(default)
extern "C" {

// The library of that name (ASCII, any case) if it is loaded in this process, else null: here only
// "oleaut32.dll", while automation is initialised (OleInitialize).
HMODULE GetModuleHandleA(const char* name);
// A function of the library, or null where it has none of that name.
FARPROC GetProcAddress(HMODULE module, const char* name);

}  // extern "C"
#pragma GCC visibility pop

#endif

// Marks what the host runtime library provides to the support library and to other users.
#pragma once

#if defined(_WIN32)
#if defined(VELAHOST_BUILDING)
#define VELAHOST_API __declspec(dllexport)
#else
#define VELAHOST_API __declspec(dllimport)
#endif
#else
#define VELAHOST_API __attribute__((visibility("default")))
#endif

// Marks the support library's exported functions. On Windows its definition file names them.
#if defined(_WIN32)
#define VELA_ENTRY
#else
#define VELA_ENTRY __attribute__((visibility("default")))
#endif

// The integer and handle names that the published platform interfaces use, with the same widths on
// every platform, without pulling in the system's headers.
#pragma once

#include <cstdint>

#if defined(_WIN32)
using DWORD = unsigned long;
using LONG = long;
#else
using DWORD = std::uint32_t;
using LONG = std::int32_t;
#endif
using UINT = unsigned int;
using WORD = unsigned short;
using BYTE = unsigned char;
using BOOL = int;

// A window handle; the host gives it a meaning, the library only passes it on.
struct HWND__;
using HWND = HWND__*;

// The bitmap of platform/picture.h.
struct HBITMAP__;
using HBITMAP = HBITMAP__*;

// The automation value; complete in platform/automation.h.
struct tagVARIANT;
using VARIANT = tagVARIANT;
struct tagSAFEARRAY;
using SAFEARRAY = tagSAFEARRAY;
struct IDispatch;

static_assert(sizeof(DWORD) == 4 && sizeof(LONG) == 4 && sizeof(WORD) == 2);

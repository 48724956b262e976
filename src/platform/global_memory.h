// Movable global memory: the blocks that matrix layers live in.
#pragma once

#ifdef _WIN32

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#else

#include <cstddef>

#include "platform/types.h"

using SIZE_T = std::size_t;
struct GlobalBlock;
using HGLOBAL = GlobalBlock*;

inline constexpr UINT GMEM_MOVEABLE = 0x0002;
inline constexpr UINT GMEM_ZEROINIT = 0x0040;

/// A new block, zero with GMEM_ZEROINIT; null when there is no memory for it.
HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes);
/// Changes the size and keeps what fits; with GMEM_ZEROINIT what is new is zero. The handle of the
/// block from then on, or null with the block as it was.
HGLOBAL GlobalReAlloc(HGLOBAL block, SIZE_T bytes, UINT flags);
/// The address of the bytes, which stays valid until the block is unlocked and reallocated or
/// freed.
void* GlobalLock(HGLOBAL block);
/// Whether it is still locked by another GlobalLock.
BOOL GlobalUnlock(HGLOBAL block);
/// Null, or the block when it could not be freed.
HGLOBAL GlobalFree(HGLOBAL block);

#endif

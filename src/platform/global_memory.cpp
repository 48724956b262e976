#include "platform/global_memory.h"

#ifndef _WIN32

#include <cstdlib>
#include <cstring>
#include <new>

#include "platform/large_pages.h"

struct GlobalBlock {
  void* data = nullptr;
  SIZE_T bytes = 0;
  int locks = 0;
};

HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes) {
  auto* block = new (std::nothrow) GlobalBlock;
  if (block == nullptr) return nullptr;
  const SIZE_T room = bytes != 0 ? bytes : 1;
  // Fresh zero pages come from the system without being touched.
  block->data = flags & GMEM_ZEROINIT ? std::calloc(room, 1) : std::malloc(room);
  if (block->data == nullptr) {
    delete block;
    return nullptr;
  }
  block->bytes = bytes;
  vela::platform::PreferLargePages(block->data, bytes);
  return block;
}

HGLOBAL GlobalReAlloc(HGLOBAL block, SIZE_T bytes, UINT flags) {
  void* data = std::realloc(block->data, bytes != 0 ? bytes : 1);
  if (data == nullptr) return nullptr;
  block->data = data;
  vela::platform::PreferLargePages(data, bytes);
  if ((flags & GMEM_ZEROINIT) && bytes > block->bytes) {
    std::memset(static_cast<char*>(data) + block->bytes, 0, bytes - block->bytes);
  }
  block->bytes = bytes;
  return block;
}

void* GlobalLock(HGLOBAL block) {
  ++block->locks;
  return block->data;
}

BOOL GlobalUnlock(HGLOBAL block) {
  if (block->locks > 0) --block->locks;
  return block->locks > 0;
}

HGLOBAL GlobalFree(HGLOBAL block) {
  std::free(block->data);
  delete block;
  return nullptr;
}

#endif

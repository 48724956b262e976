#include "platform/large_pages.h"

#ifndef _WIN32
#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace vela::platform {

#ifdef _WIN32

void PreferLargePages(void* /*memory*/, std::size_t /*bytes*/) {}

#else

void PreferLargePages(void* memory, std::size_t bytes) {
  constexpr std::size_t kWorthwhile = std::size_t{4} << 20;
  if (bytes < kWorthwhile) return;
  static const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const auto begin = reinterpret_cast<std::uintptr_t>(memory);
  // Whole pages around the memory, allocator's header and all: a mapping that is advised only in
  // part becomes several to the system, which realloc then cannot move without copying.
  const std::uintptr_t first = begin / page * page;
  const std::uintptr_t end = (begin + bytes + page - 1) / page * page;
  madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
}

#endif

}  // namespace vela::platform

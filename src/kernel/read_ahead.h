#pragma once

#include <cstddef>
#include <cstdint>
#include <hwy/cache_control.h>

namespace vela::kernel {

/// Asks for the cache lines that a loop over memory reaches a page after the `bytes` at data. The
/// processor fetches ahead by itself only within a page, and waits at the next: so loops that do
/// too much between their loads to have many under way gain a third on arrays beyond the caches.
/// The lines need not exist.
inline void ReadAhead(const void* data, std::size_t bytes) {
  constexpr std::uintptr_t kPage = 4096, kLine = 64;
  const std::uintptr_t ahead = reinterpret_cast<std::uintptr_t>(data) + kPage;
  for (std::uintptr_t line = ahead; line < ahead + bytes; line += kLine) {
    hwy::Prefetch(reinterpret_cast<const char*>(line));
  }
}

}  // namespace vela::kernel

#pragma once

#include <cstddef>

namespace vela::platform {

/// Asks the system to back newly allocated memory with large pages: far fewer faults when it is
/// first touched, and fewer address translations missed afterwards. A hint that may be ignored;
/// memory below 4 MB, and all memory on Windows, is left as it is.
void PreferLargePages(void* memory, std::size_t bytes);

}  // namespace vela::platform

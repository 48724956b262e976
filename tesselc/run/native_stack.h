#pragma once

#include <cstdint>

namespace tesselc {

// The lowest address that a running script may let the stack of this thread grow down to. Below it
// lies a reserve for whatever one script call does before the next check.
std::uintptr_t NativeStackLimit();

}  // namespace tesselc

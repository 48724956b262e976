#pragma once

#include <cstdint>
#include <functional>

namespace tesselc {

// The lowest address that a running script may let the stack of this thread grow down to. Below it
// lies a reserve for whatever one script call does before the next check.
std::uintptr_t NativeStackLimit();

// Runs work on a stack of the size that the bounds of nesting are made for, however little the
// shell allows its programs. Work must not throw.
int RunOnUsualStack(const std::function<int()>& work);

}  // namespace tesselc

#pragma once

namespace vela::grid {

// The calls on arrays, and those on values of every type.
void RunArrays();

}  // namespace vela::grid

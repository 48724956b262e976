#pragma once

namespace vela::kernel {

/// What stands beyond the edges of a matrix.
enum class EdgeMode {
  kZeros = 0,
  kMirror = 1,  ///< mirrored without repeating the edge: the first beyond row 0 is row 1
  kRepeat = 2,  ///< the edge row or column
};

}  // namespace vela::kernel

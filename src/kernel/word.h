#pragma once

#include <cstddef>

namespace vela::kernel {

/// An element of that many bytes whatever it means: kernels that only move elements are compiled
/// once for each width, 1, 2, 4, 8 and 16 bytes (and 24, the widest point, for vectors).
template <std::size_t kWidth>
struct [[gnu::may_alias]] Word {
  std::byte bytes[kWidth];
};

}  // namespace vela::kernel

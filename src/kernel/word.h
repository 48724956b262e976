#pragma once

#include <cstddef>

/// Expands F(Word<N>) for each width that the elements of a matrix have.
#define VELA_KERNEL_FOR_MATRIX_WORDS(F) F(Word<1>) F(Word<2>) F(Word<4>) F(Word<8>) F(Word<16>)

namespace vela::kernel {

/// An element of that many bytes whatever it means: kernels that only move elements are compiled
/// once for each width, 1, 2, 4, 8 and 16 bytes (and 24, the widest point, for vectors).
template <std::size_t kWidth>
struct [[gnu::may_alias]] Word {
  std::byte bytes[kWidth];
};

}  // namespace vela::kernel

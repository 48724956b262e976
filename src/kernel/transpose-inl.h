// Transposition of blocks that are a cache line wide, and copies of such blocks.
// Compiled once for each instruction set: the guard lets it in again for the next.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <hwy/highway.h>

#include "kernel/line_block.h"

#if defined(VELA_KERNEL_TRANSPOSE_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef VELA_KERNEL_TRANSPOSE_TOGGLE
#undef VELA_KERNEL_TRANSPOSE_TOGGLE
#else
#define VELA_KERNEL_TRANSPOSE_TOGGLE
#endif

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Line blocks per side of a tile, the pages of which all have entries at once.
inline constexpr std::size_t kTile = 4;

// Lanes that hold an element, or half of one.
template <std::size_t kWidth>
using MoveLane = hwy::UnsignedFromSize<std::min<std::size_t>(kWidth, 8)>;

template <class D>
inline constexpr std::size_t kVectorBytes = hn::MaxLanes(D()) * sizeof(hn::TFromD<D>);

// A vector of 16 bytes from each of as many lines as fit, `stride` elements apart.
template <class D, class W>
HWY_INLINE hn::Vec<D> GatherBlocks(D d, const W* from, std::ptrdiff_t stride) {
  if constexpr (kVectorBytes<D> == 16) {
    return hn::LoadU(d, reinterpret_cast<const hn::TFromD<D>*>(from));
  } else {
    const hn::Half<D> half;
    constexpr auto kBlocks = static_cast<std::ptrdiff_t>(kVectorBytes<D> / 32);
    return hn::Combine(d, GatherBlocks(half, from + kBlocks * stride, stride),
                       GatherBlocks(half, from, stride));
  }
}

// Transposes as many columns as 16 bytes hold of as many rows as a vector holds. Each vector holds
// 16 bytes of several rows, so that all shuffles stay inside those and whole vectors are stored.
template <class D, class W>
HWY_INLINE void TransposeVectors(D d, ConstBlock<W> from, Block<W> to) {
  constexpr std::size_t kSide = 16 / sizeof(W);
  hn::Vec<D> v[kSide], w[kSide];
  for (std::size_t k = 0; k < kSide; ++k) {
    v[k] = GatherBlocks(d, from.Row(k), from.stride * static_cast<std::ptrdiff_t>(kSide));
  }
  for (std::size_t step = 1; step < kSide; step *= 2) {
    for (std::size_t k = 0; k < kSide / 2; ++k) {
      w[2 * k] = hn::InterleaveLower(d, v[k], v[k + kSide / 2]);
      w[2 * k + 1] = hn::InterleaveUpper(d, v[k], v[k + kSide / 2]);
    }
    for (std::size_t k = 0; k < kSide; ++k) v[k] = w[k];
  }
  for (std::size_t k = 0; k < kSide; ++k) {
    hn::StoreU(v[k], d, reinterpret_cast<hn::TFromD<D>*>(to.Row(k)));
  }
}

// Transposes the whole vectors of rows; returns how many rows that were.
template <class D, class W>
HWY_INLINE std::size_t TransposeRows(D d, ConstBlock<W> from, Block<W> to, std::size_t rows,
                                     std::size_t cols) {
  constexpr std::size_t kRows = kVectorBytes<D> / sizeof(W);
  constexpr std::size_t kCols = 16 / sizeof(W);
  const std::size_t whole_rows = rows - rows % kRows;
  const std::size_t whole_cols = cols - cols % kCols;
  for (std::size_t r = 0; r < whole_rows; r += kRows) {
    for (std::size_t c = 0; c < whole_cols; c += kCols) {
      TransposeVectors(d, from.At(r, c), to.At(c, r));
    }
    for (std::size_t c = whole_cols; c < cols; ++c) {
      for (std::size_t k = r; k < r + kRows; ++k) *to.At(c, k).data = *from.At(k, c).data;
    }
  }
  return whole_rows;
}

// to(c, r) = from(r, c), for no more rows and columns than a line has elements. Its code is long:
// in line it would take most of the time that its callers need to compile.
template <class W>
HWY_NOINLINE void TransposeBlock(ConstBlock<W> from, Block<W> to, std::size_t rows,
                                 std::size_t cols) {
  const hn::ScalableTag<MoveLane<sizeof(W)>> d;
  constexpr std::size_t kSide = kLineElements<W>;
  if (rows == kSide && cols == kSide) {
    TransposeRows(d, from, to, kSide, kSide);
    return;
  }
  std::size_t r = TransposeRows(d, from, to, rows, cols);
  if constexpr (kVectorBytes < decltype(d) >> 16) {
    const hn::Full128<MoveLane<sizeof(W)>> block;
    r += TransposeRows(block, from.At(r, 0), to.At(0, r), rows - r, cols);
  }
  for (; r < rows; ++r) {
    for (std::size_t c = 0; c < cols; ++c) *to.At(c, r).data = *from.At(r, c).data;
  }
}

// Asks for the lines of a block that will be read and stored to: alone, one transfer would wait for
// another.
template <class W>
HWY_INLINE void PrefetchRows(Block<W> block, std::size_t rows) {
  for (std::size_t r = 0; r < rows; ++r) __builtin_prefetch(block.Row(r), 1, 2);
}

// Copies rows that are no longer than a cache line.
template <class W>
HWY_INLINE void CopyLines(ConstBlock<W> from, Block<W> to, std::size_t rows, std::size_t cols) {
  const hn::ScalableTag<MoveLane<sizeof(W)>> d;
  using Lane = hn::TFromD<decltype(d)>;
  for (std::size_t r = 0; r < rows; ++r) {
    if (cols < kLineElements<W>) {
      std::copy_n(from.Row(r), cols, to.Row(r));
      continue;
    }
    for (std::size_t i = 0; i < kLineElements<W> * sizeof(W) / sizeof(Lane); i += hn::Lanes(d)) {
      hn::StoreU(hn::LoadU(d, reinterpret_cast<const Lane*>(from.Row(r)) + i), d,
                 reinterpret_cast<Lane*>(to.Row(r)) + i);
    }
  }
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

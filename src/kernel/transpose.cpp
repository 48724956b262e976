#include "kernel/transpose.h"

#include <algorithm>
#include <cstdint>
#include <hwy/cache_control.h>

#include "kernel/dispatch.h"
#include "kernel/stream_copy.h"
#include "kernel/transpose_rectangle.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/transpose.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/transpose-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {

// Line blocks along the rows of `from` that are done before the next rows are: together they are a
// page or so of it, and no more rows of `to` than there are entries for pages.
constexpr std::size_t kStrip = 32;

// Whether all line blocks of the matrix begin a cache line in every row once `lead` elements are
// set apart.
template <class W>
bool KeepsToLines(Block<W> to, std::size_t lead) {
  const auto stride = to.stride * static_cast<std::ptrdiff_t>(sizeof(W));
  return stride % 64 == 0 && reinterpret_cast<std::uintptr_t>(to.data + lead) % 64 == 0;
}

// Stores rows of a cache line each past the caches; `to` begins a line in every row.
template <class W>
HWY_INLINE void StreamLines(ConstBlock<W> from, Block<W> to, std::size_t rows) {
  const hn::ScalableTag<MoveLane<sizeof(W)>> d;
  using Lane = hn::TFromD<decltype(d)>;
  for (std::size_t r = 0; r < rows; ++r) {
    for (std::size_t i = 0; i < 64 / sizeof(Lane); i += hn::Lanes(d)) {
      hn::Stream(hn::LoadU(d, reinterpret_cast<const Lane*>(from.Row(r)) + i), d,
                 reinterpret_cast<Lane*>(to.Row(r)) + i);
    }
  }
}

// Calls visit(i, j) for all pieces of rows and columns, in strips of columns.
template <class Visit>
HWY_INLINE void ForEachInStrips(std::size_t row_pieces, std::size_t col_pieces, Visit visit) {
  for (std::size_t strip = 0; strip < col_pieces; strip += kStrip) {
    const std::size_t strip_end = std::min(strip + kStrip, col_pieces);
    for (std::size_t i = 0; i < row_pieces; ++i) {
      for (std::size_t j = strip; j < strip_end; ++j) visit(i, j);
    }
  }
}

template <class W>
void TransposeBlocks(const W* x, W* out, std::size_t rows, std::size_t cols) {
  const ConstBlock<W> from{x, static_cast<std::ptrdiff_t>(cols)};
  const Block<W> to{out, static_cast<std::ptrdiff_t>(rows)};
  constexpr std::size_t kSide = kLineElements<W>;
  const std::size_t lead = ElementsBeforeLine(to.data, rows);
  const Pieces row_pieces(rows, lead, kSide);
  const Pieces col_pieces(cols, 0, kSide);
  if (rows * cols * sizeof(W) < kStreamBytes || !KeepsToLines(to, lead)) {
    ForEachInStrips(row_pieces.Size(), col_pieces.Size(),
                    [&](std::size_t i, std::size_t j) HWY_ATTR {
                      const std::size_t r = row_pieces.Begin(i), c = col_pieces.Begin(j);
                      const std::size_t count = col_pieces.Count(j);
                      if (i + 1 < row_pieces.Size())
                        PrefetchRows(to.At(c, row_pieces.Begin(i + 1)), count);
                      TransposeBlock(from.At(r, c), to.At(c, r), row_pieces.Count(i), count);
                    });
    return;
  }
  HWY_ALIGN W aside[kSide * kSide];
  const Block<W> buffer{aside, static_cast<std::ptrdiff_t>(kSide)};
  ForEachInStrips(row_pieces.Size(), col_pieces.Size(), [&](std::size_t i, std::size_t j) HWY_ATTR {
    const std::size_t r = row_pieces.Begin(i), c = col_pieces.Begin(j);
    const std::size_t count = col_pieces.Count(j);
    if (row_pieces.Count(i) < kSide) {
      TransposeBlock(from.At(r, c), to.At(c, r), row_pieces.Count(i), count);
    } else {
      TransposeBlock(from.At(r, c), buffer, kSide, count);
      StreamLines<W>(buffer, to.At(c, r), count);
    }
  });
  hwy::FlushStream();
}

// Exchanges a block and the one across the diagonal, each transposed.
template <class W>
HWY_INLINE void SwapTransposed(Block<W> a, Block<W> b, std::size_t rows, std::size_t cols) {
  constexpr auto kSide = static_cast<std::ptrdiff_t>(kLineElements<W>);
  HWY_ALIGN W aside[kSide * kSide];
  const Block<W> buffer{aside, kSide};
  TransposeBlock<W>(a, buffer, rows, cols);
  if (a.data != b.data) TransposeBlock<W>(b, a, cols, rows);
  CopyLines<W>(buffer, b, cols, rows);
}

template <class W>
void TransposeSquare(W* data, std::size_t n) {
  const Block<W> x{data, static_cast<std::ptrdiff_t>(n)};
  const Pieces pieces(n, ElementsBeforeLine(data, n), kLineElements<W>);
  for (std::size_t row = 0; row < pieces.Size(); row += kTile) {
    const std::size_t row_end = std::min(row + kTile, pieces.Size());
    for (std::size_t col = row; col < pieces.Size(); col += kTile) {
      const std::size_t col_end = std::min(col + kTile, pieces.Size());
      for (std::size_t i = row; i < row_end; ++i) {
        for (std::size_t j = std::max(i, col); j < col_end; ++j) {
          const std::size_t r = pieces.Begin(i), c = pieces.Begin(j);
          SwapTransposed(x.At(r, c), x.At(c, r), pieces.Count(i), pieces.Count(j));
        }
      }
    }
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <class W>
void Transpose(MatrixSpan<const W> x, MatrixSpan<W> out) {
  if (x.rows <= 1 || x.cols <= 1) {
    std::copy_n(x.data, x.Size(), out.data);
    return;
  }
  VELA_KERNEL_DISPATCH(TransposeBlocks<W>)(x.data, out.data, x.rows, x.cols);
}

template <class W>
void Transpose(MatrixSpan<W> x) {
  if (x.rows <= 1 || x.cols <= 1) return;
  if (x.rows == x.cols) {
    VELA_KERNEL_DISPATCH(TransposeSquare<W>)(x.data, x.rows);
    return;
  }
  detail::TransposeRectangle(x);
}

#define VELA_KERNEL_INSTANTIATE(W)                                \
  template void Transpose<W>(MatrixSpan<const W>, MatrixSpan<W>); \
  template void Transpose<W>(MatrixSpan<W>);
VELA_KERNEL_FOR_MATRIX_WORDS(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

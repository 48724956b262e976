#include "kernel/matrix_rotate.h"

#include <algorithm>
#include <utility>

#include "kernel/dispatch.h"
#include "kernel/flip.h"
#include "kernel/transpose.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/matrix_rotate.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/transpose-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {

// Moves four blocks of a square of side n, those that a turn brings onto one another, one place on.
template <class W>
HWY_INLINE void TurnFour(bool clockwise, Block<W> x, std::size_t n, std::size_t r, std::size_t c,
                         std::size_t rows, std::size_t cols) {
  constexpr std::size_t kSide = kLineElements<W>;
  HWY_ALIGN W aside[kSide * kSide];
  const Block<W> buffer{aside, static_cast<std::ptrdiff_t>(kSide)};
  const Block<W> first = x.At(r, c);
  const Block<W> opposite = x.At(n - r - rows, n - c - cols);
  Block<W> source = x.At(c, n - r - rows);
  Block<W> target = x.At(n - c - cols, r);
  if (clockwise) std::swap(source, target);
  PrefetchRows(source, cols);
  PrefetchRows(opposite, rows);
  PrefetchRows(target, cols);
  // Each takes the place of the one before it, the first that of a buffer.
  const Block<W> places[] = {buffer, first, source, opposite, target};
  for (std::size_t k = 0; k < 4; ++k) {
    Block<W> from = places[k + 1], to = places[k];
    (clockwise ? from = from.Reversed(rows) : to = to.Reversed(cols));
    TransposeBlock<W>(from, to, rows, cols);
    std::swap(rows, cols);
  }
  CopyLines<W>(buffer, target, cols, rows);
}

// The upper left quarter of the square, with the middle row where n is odd, goes through TurnFour.
template <class W>
void TurnSquare(W* data, std::size_t n, bool clockwise) {
  constexpr std::size_t kSide = kLineElements<W>;
  const Block<W> x{data, static_cast<std::ptrdiff_t>(n)};
  const std::size_t lead = ElementsBeforeLine(data, n) % kSide;
  const Pieces rows((n + 1) / 2, (n + kSide - lead) % kSide, kSide);
  const Pieces cols(n / 2, lead, kSide);
  for (std::size_t row = 0; row < rows.Size(); row += kTile) {
    for (std::size_t col = 0; col < cols.Size(); col += kTile) {
      for (std::size_t i = row; i < std::min(row + kTile, rows.Size()); ++i) {
        for (std::size_t j = col; j < std::min(col + kTile, cols.Size()); ++j) {
          TurnFour<W>(clockwise, x, n, rows.Begin(i), cols.Begin(j), rows.Count(i), cols.Count(j));
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
void RotateQuarters(MatrixSpan<W> x, int turns) {
  const bool clockwise = turns == 3;
  if (turns == 2) {
    Reverse(x.Values());
  } else if (x.rows != x.cols) {
    Transpose(x);
    const MatrixSpan<W> turned(x.data, x.cols, x.rows);
    clockwise ? FlipHorizontal(turned) : FlipVertical(turned);
  } else {
    VELA_KERNEL_DISPATCH(TurnSquare<W>)(x.data, x.rows, clockwise);
  }
}

#define VELA_KERNEL_INSTANTIATE(W) template void RotateQuarters<W>(MatrixSpan<W>, int);
VELA_KERNEL_FOR_MATRIX_WORDS(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

#include "kernel/block.h"

#include <algorithm>
#include <cstring>

#include "kernel/matrix_wrap.h"
#include "kernel/stream_copy.h"

namespace vela::kernel {
namespace {

struct ByteRows {
  const std::byte* from;
  std::byte* to;
  std::size_t from_stride, to_stride;
  std::size_t count;
  std::size_t size;  // bytes of each row
};

// Whether row i moves towards higher addresses.
bool MovesUp(const ByteRows& rows, std::size_t i) {
  return rows.to + i * rows.to_stride > rows.from + i * rows.from_stride;
}

// How far rows move changes steadily from row to row, so that those that move up come all before or
// all after the others. Those go from the last to the first, the others from the first to the last:
// no row is then overwritten before it is read, for none lies beyond the rows next to it.
template <class Move>
void MoveEach(const ByteRows& rows, Move move) {
  const auto step = [&](std::size_t i) {
    move(rows.from + i * rows.from_stride, rows.to + i * rows.to_stride);
  };
  std::size_t end = rows.count;
  while (end > 0 && MovesUp(rows, end - 1)) step(--end);
  std::size_t up = 0;
  while (up < end && MovesUp(rows, up)) ++up;
  for (std::size_t i = up; i-- > 0;) step(i);
  for (std::size_t i = up; i < end; ++i) step(i);
}

// Moves rows of kSize to 2 * kSize bytes without a call, as two runs that overlap.
template <std::size_t kSize>
void MoveShort(const ByteRows& rows) {
  const std::size_t second = rows.size - kSize;
  MoveEach(rows, [=](const std::byte* from, std::byte* to) {
    Word<kSize> first_run, second_run;
    std::memcpy(&first_run, from, kSize);
    std::memcpy(&second_run, from + second, kSize);
    std::memcpy(to, &first_run, kSize);
    std::memcpy(to + second, &second_run, kSize);
  });
}

bool Overlap(const ByteRows& rows) {
  const std::byte* const from_end = rows.from + (rows.count - 1) * rows.from_stride + rows.size;
  const std::byte* const to_end = rows.to + (rows.count - 1) * rows.to_stride + rows.size;
  return rows.from < to_end && rows.to < from_end;
}

void MoveRows(const ByteRows& rows) {
  if (rows.size >= kLeastStreamedRun && rows.size * rows.count >= kStreamBytes && !Overlap(rows)) {
    for (std::size_t i = 0; i < rows.count; ++i) {
      StreamCopy(rows.from + i * rows.from_stride, rows.to + i * rows.to_stride, rows.size);
    }
  } else if (rows.size >= 128) {
    MoveEach(rows,
             [&](const std::byte* from, std::byte* to) { std::memmove(to, from, rows.size); });
  } else if (rows.size >= 64) {
    MoveShort<64>(rows);
  } else if (rows.size >= 32) {
    MoveShort<32>(rows);
  } else if (rows.size >= 16) {
    MoveShort<16>(rows);
  } else if (rows.size >= 8) {
    MoveShort<8>(rows);
  } else if (rows.size >= 4) {
    MoveShort<4>(rows);
  } else if (rows.size >= 2) {
    MoveShort<2>(rows);
  } else {
    MoveShort<1>(rows);
  }
}

}  // namespace

template <class W>
void CopyBlock(MatrixSpan<const W> from, std::size_t row, std::size_t col, MatrixSpan<W> to,
               std::size_t to_row, std::size_t to_col, std::size_t rows, std::size_t cols) {
  if (rows == 0 || cols == 0) return;
  const W* const first = &from(row, col);
  W* const target = &to(to_row, to_col);
  if (cols == from.cols && cols == to.cols) {
    std::memmove(target, first, rows * cols * sizeof(W));
    return;
  }
  MoveRows({reinterpret_cast<const std::byte*>(first), reinterpret_cast<std::byte*>(target),
            from.cols * sizeof(W), to.cols * sizeof(W), rows, cols * sizeof(W)});
}

template <class W>
void SelectRows(MatrixSpan<const W> x, std::span<const std::uint32_t> indices, MatrixSpan<W> out) {
  for (std::size_t k = 0; k < indices.size();) {
    // Rows that follow one another in both are one copy.
    const std::size_t first = indices[k];
    std::size_t count = 1;
    while (k + count < indices.size() && indices[k + count] == first + count) ++count;
    CopyBlock(x, first, 0, out, k, 0, count, x.cols);
    k += count;
  }
}

template <class W>
void SelectCols(MatrixSpan<const W> x, std::span<const std::uint32_t> indices, MatrixSpan<W> out) {
  for (std::size_t r = 0; r < x.rows; ++r) {
    const W* const row = x.Row(r).data();
    W* const target = out.Row(r).data();
    for (std::size_t k = 0; k < indices.size(); ++k) target[k] = row[indices[k]];
  }
}

template <class W>
void SwapHalves(MatrixSpan<const W> x, std::size_t row_split, std::size_t col_split,
                MatrixSpan<W> out) {
  if (x.data == out.data) {
    WrapMatrix(out, static_cast<std::int64_t>(row_split), static_cast<std::int64_t>(col_split));
    return;
  }
  const std::size_t lower = x.rows - row_split, right = x.cols - col_split;
  CopyBlock(x, row_split, col_split, out, 0, 0, lower, right);
  CopyBlock(x, row_split, 0, out, 0, right, lower, col_split);
  CopyBlock(x, 0, col_split, out, lower, 0, row_split, right);
  CopyBlock(x, 0, 0, out, lower, right, row_split, col_split);
}

#define VELA_KERNEL_INSTANTIATE(W)                                                                 \
  template void CopyBlock<W>(MatrixSpan<const W>, std::size_t, std::size_t, MatrixSpan<W>,         \
                             std::size_t, std::size_t, std::size_t, std::size_t);                  \
  template void SelectRows<W>(MatrixSpan<const W>, std::span<const std::uint32_t>, MatrixSpan<W>); \
  template void SelectCols<W>(MatrixSpan<const W>, std::span<const std::uint32_t>, MatrixSpan<W>); \
  template void SwapHalves<W>(MatrixSpan<const W>, std::size_t, std::size_t, MatrixSpan<W>);
VELA_KERNEL_FOR_MATRIX_WORDS(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

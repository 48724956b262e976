#include "kernel/pad.h"

#include <algorithm>
#include <span>

#include "kernel/stream_copy.h"

namespace vela::kernel {
namespace {

template <class W>
bool CanPad(MatrixSpan<const W> x, std::size_t n, EdgeMode mode) {
  switch (mode) {
    case EdgeMode::kZeros:
      return true;
    case EdgeMode::kMirror:
      return n < x.rows && n < x.cols;
    case EdgeMode::kRepeat:
      return !x.IsEmpty();
  }
  return false;
}

// The row of x that row i of the padded matrix shows.
std::size_t SourceRow(std::size_t i, std::size_t rows, std::size_t n, EdgeMode mode) {
  const std::size_t last = rows - 1;
  if (i >= n && i - n < rows) return i - n;
  if (mode == EdgeMode::kRepeat) return i < n ? 0 : last;
  return i < n ? n - i : last - (i - n - last);
}

template <class W>
void PadRow(std::span<const W> row, std::size_t n, EdgeMode mode, bool stream, W* out) {
  W* const middle = out + n;
  W* const right = middle + row.size();
  if (stream) {
    StreamCopy(row.data(), middle, row.size_bytes());
  } else {
    std::copy(row.begin(), row.end(), middle);
  }
  switch (mode) {
    case EdgeMode::kZeros:
      std::fill_n(out, n, W{});
      std::fill_n(right, n, W{});
      break;
    case EdgeMode::kMirror:
      std::reverse_copy(row.data() + 1, row.data() + 1 + n, out);
      std::reverse_copy(right - 1 - n, right - 1, right);
      break;
    case EdgeMode::kRepeat:
      std::fill_n(out, n, row.front());
      std::fill_n(right, n, row.back());
      break;
  }
}

}  // namespace

template <class W>
bool Pad(MatrixSpan<const W> x, std::size_t n, EdgeMode mode, MatrixSpan<W> out) {
  if (!CanPad(x, n, mode)) return false;
  const bool stream =
      x.cols * sizeof(W) >= kLeastStreamedRun && out.Size() * sizeof(W) >= kStreamBytes;
  for (std::size_t i = 0; i < out.rows; ++i) {
    const std::span<W> target = out.Row(i);
    const bool inside = i >= n && i - n < x.rows;
    if (mode == EdgeMode::kZeros && !inside) {
      std::fill(target.begin(), target.end(), W{});
    } else {
      PadRow(x.Row(SourceRow(i, x.rows, n, mode)), n, mode, stream, target.data());
    }
  }
  return true;
}

#define VELA_KERNEL_INSTANTIATE(W) \
  template bool Pad<W>(MatrixSpan<const W>, std::size_t, EdgeMode, MatrixSpan<W>);
VELA_KERNEL_FOR_MATRIX_WORDS(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

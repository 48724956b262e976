#include "kernel/transpose_rectangle.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <vector>

#include "kernel/block.h"
#include "kernel/transpose.h"

namespace vela::kernel::detail {
namespace {

// Below this, the pieces of rows that squares consist of are too short to be moved one by one.
constexpr std::size_t kLeastSide = 64;

// Owns a matrix that is set aside.
template <class W>
class Aside {
 public:
  Aside(std::size_t rows, std::size_t cols)
      : elements_(std::make_unique_for_overwrite<W[]>(rows * cols)),
        span_(elements_.get(), rows, cols) {}
  MatrixSpan<W> Span() const { return span_; }
  MatrixSpan<const W> Const() const { return span_; }

 private:
  std::unique_ptr<W[]> elements_;
  MatrixSpan<W> span_;
};

template <class W>
void TransposeThroughCopy(MatrixSpan<W> x) {
  const Aside<W> copy(x.rows, x.cols);
  std::copy_n(x.data, x.Size(), copy.Span().data);
  Transpose(copy.Const(), MatrixSpan<W>(x.data, x.cols, x.rows));
}

// Transposes a matrix of runs of elements, each moved as a whole along the cycle that it is part
// of.
template <class W>
class RunTranspose {
 public:
  RunTranspose(W* runs, std::size_t rows, std::size_t cols, std::size_t length)
      : runs_(runs), rows_(rows), cols_(cols), length_(length), aside_(1, length) {
    if (rows > 1 && cols > 1) done_.resize(rows * cols);
  }

  void Run() {
    for (std::size_t i = 0; i < done_.size(); ++i) {
      if (!done_[i]) FollowCycle(i);
    }
  }

 private:
  std::size_t Source(std::size_t run) const { return run % rows_ * cols_ + run / rows_; }

  W* At(std::size_t run) const { return runs_ + run * length_; }

  void FollowCycle(std::size_t start) {
    done_[start] = true;
    std::size_t source = Source(start);
    if (source == start) return;
    std::copy_n(At(start), length_, aside_.Span().data);
    std::size_t hole = start;
    for (; source != start; source = Source(hole)) {
      std::copy_n(At(source), length_, At(hole));
      done_[source] = true;
      hole = source;
    }
    std::copy_n(aside_.Span().data, length_, At(hole));
  }

  W* runs_;
  std::size_t rows_, cols_, length_;
  Aside<W> aside_;
  std::vector<bool> done_;
};

template <class W>
void TransposeSquares(W* data, std::size_t count, std::size_t side) {
  for (std::size_t k = 0; k < count; ++k) {
    Transpose(MatrixSpan<W>(data + k * side * side, side, side));
  }
}

// The squares stand one below the other; transposed they go side by side, and the rest, transposed
// aside, behind them.
template <class W>
void TransposeTall(MatrixSpan<W> x) {
  const std::size_t side = x.cols, count = x.rows / side, covered = count * side;
  const Aside<W> rest(side, x.rows - covered);
  RunTranspose<W> runs(x.data, count, side, side);
  Transpose(MatrixSpan<const W>(x.Rows(covered, x.rows - covered)), rest.Span());
  TransposeSquares(x.data, count, side);
  runs.Run();
  const MatrixSpan<W> out(x.data, side, x.rows);
  CopyBlock(MatrixSpan<const W>(x.data, side, covered), 0, 0, out, 0, 0, side, covered);
  CopyBlock(rest.Const(), 0, 0, out, 0, covered, side, x.rows - covered);
}

// The same way back.
template <class W>
void TransposeWide(MatrixSpan<W> x) {
  const std::size_t side = x.rows, count = x.cols / side, covered = count * side;
  const std::size_t left = x.cols - covered;
  const Aside<W> rest(side, left);
  RunTranspose<W> runs(x.data, side, count, side);
  CopyBlock(MatrixSpan<const W>(x), 0, covered, rest.Span(), 0, 0, side, left);
  CopyBlock(MatrixSpan<const W>(x), 0, 0, MatrixSpan<W>(x.data, side, covered), 0, 0, side,
            covered);
  runs.Run();
  TransposeSquares(x.data, count, side);
  Transpose(rest.Const(), MatrixSpan<W>(x.data + covered * side, left, side));
}

}  // namespace

template <class W>
void TransposeRectangle(MatrixSpan<W> x) {
  if (std::min(x.rows, x.cols) < kLeastSide) {
    TransposeThroughCopy(x);
  } else if (x.rows > x.cols) {
    TransposeTall(x);
  } else {
    TransposeWide(x);
  }
}

#define VELA_KERNEL_INSTANTIATE(W) template void TransposeRectangle<W>(MatrixSpan<W>);
VELA_KERNEL_FOR_MATRIX_WORDS(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel::detail

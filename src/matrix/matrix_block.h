// One two-dimensional block of elements: the storage of a layer, and the operations on it.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/container/element_span.h"
#include "frame/container/layer.h"
#include "frame/container/tensors_base.h"
#include "kernel/edge_mode.h"
#include "kernel/matrix_span.h"
#include "platform/types.h"

namespace vela {

class MatrixBlock;

// An HGLOBAL, without the system's headers.
using MemoryHandle = void*;

}  // namespace vela

// The operations on a block of any element type. They work in place and return nonzero for success,
// unless they say otherwise; what fails for want of memory throws std::bad_alloc with the block as
// it was, and an element type that an operation does not serve ends the handler with status 12291.
class TCOneMatrixBase {
 public:
  virtual ~TCOneMatrixBase() = default;

  virtual int FlipHorizontal() = 0;
  virtual int FlipVertical() = 0;
  // 1 to 3 quarter turns counter-clockwise; an odd number swaps rows and columns.
  virtual int RotateQuarter(int turns) = 0;
  // 0 where the edge mode does not fit the shape, for this one and the next.
  virtual int ApplyFilter(vela::kernel::MatrixSpan<const double> weights,
                          vela::kernel::EdgeMode mode, bool normalise) = 0;
  virtual int MedianFilter(int size, vela::kernel::EdgeMode mode) = 0;
  // Lays the elements, read row by row (0) or column by column, into columns or rows.
  virtual int Reorder(int order) = 0;
  virtual int Transpose() = 0;
  // The slot of an operation that no member uses.
  virtual int Reserved() { return 0; }
  // This block and source, below it (1) or to its right (2), into target, which has that shape.
  virtual int Concatenate(const vela::MatrixBlock& source, vela::MatrixBlock& target, int dim) = 0;
  // Moves the middle (dim 1: of the rows, 2: of the columns, -1: of both) to the front or back into
  // target, which has this shape and may be this block.
  virtual int FFTShift(vela::MatrixBlock& target, int dim, bool inverse) = 0;
  // 0 for success, 1 for an unknown filter, 2 for a block with missing values.
  virtual int FreqFilter(DWORD filter_type, double cutoff, int order, double cutoff2) = 0;
  // Element (r, c) becomes the former (r + row_shift, c + col_shift), around the edges.
  virtual int Wrap(int row_shift, int col_shift) = 0;
};

namespace vela {

// Whether a block of the type can have that shape: a status, 1 for a negative dimension, 7 for more
// than 4 GiB - 1.
int CheckShape(unsigned type_id, const LayerShape& shape);

// Elements of one type, row-major and contiguous: either a block of movable global memory that it
// owns, zero where nothing was written, or a view of another block's elements.
class MatrixBlock : public TCOneMatrixBase {
 public:
  // Empty. Of type_id, for both.
  explicit MatrixBlock(unsigned type_id) : type_id_(type_id) {}
  // A view of elements that outlive it.
  MatrixBlock(unsigned type_id, void* data, const LayerShape& shape)
      : data_(data),
        rows_(static_cast<int>(shape.rows)),
        cols_(static_cast<int>(shape.cols)),
        type_id_(type_id) {}
  MatrixBlock(MatrixBlock&& other) noexcept;
  MatrixBlock(const MatrixBlock&) = delete;
  MatrixBlock& operator=(const MatrixBlock&) = delete;
  ~MatrixBlock() override;

  LayerShape Shape() const { return {rows_, cols_}; }
  std::size_t Size() const {
    return static_cast<std::size_t>(rows_) * static_cast<std::size_t>(cols_);
  }
  ElementSpan Elements() const { return {type_id_, data_, Size()}; }
  template <class T>
  kernel::MatrixSpan<T> As() const {
    return {static_cast<T*>(data_), static_cast<std::size_t>(rows_),
            static_cast<std::size_t>(cols_)};
  }

  // Gives an owned block this shape, each element at its row and column, or (kDrop) the bytes as
  // they lie; new elements are zero. A status, with the block as it was unless 0: 7 for more than
  // 4 GiB - 1, 1 for a negative dimension, a locked block or want of memory.
  int Resize(std::int64_t rows, std::int64_t cols, Contents contents);
  // Throws std::bad_alloc. For blocks of one element type.
  void CopyFrom(const MatrixBlock& other);
  // While it is locked the block keeps its elements where they are, though they may take another
  // shape.
  bool IsLocked() const { return locks_ > 0; }
  void LockSize() { ++locks_; }
  void UnlockSize() {
    if (locks_ > 0) --locks_;
  }

  // Line k of target, a row or a column, becomes line lines[k], which this block has.
  void SelectLines(std::span<const int> lines, bool rows, MatrixBlock& target) const;

  int FlipHorizontal() override;
  int FlipVertical() override;
  int RotateQuarter(int turns) override;
  int ApplyFilter(kernel::MatrixSpan<const double> weights, kernel::EdgeMode mode,
                  bool normalise) override;
  int MedianFilter(int size, kernel::EdgeMode mode) override;
  int Reorder(int order) override;
  int Transpose() override;
  int Concatenate(const MatrixBlock& source, MatrixBlock& target, int dim) override;
  int FFTShift(MatrixBlock& target, int dim, bool inverse) override;
  int FreqFilter(DWORD filter_type, double cutoff, int order, double cutoff2) override;
  int Wrap(int row_shift, int col_shift) override;

 private:
  int Reallocate(std::int64_t rows, std::int64_t cols);
  int LayAnew(std::int64_t rows, std::int64_t cols);
  void Hold(MemoryHandle memory);

  MemoryHandle memory_ = nullptr;
  void* data_ = nullptr;  // the locked address of memory_, or what is viewed
  int rows_ = 0;
  int cols_ = 0;
  int locks_ = 0;
  unsigned type_id_;
};

// Calls f with the block's elements as a MatrixSpan of their type, as WithElements does; or of
// words of their width.
template <class F>
auto WithMatrix(const MatrixBlock& block, F&& f) {
  const auto rows = static_cast<std::size_t>(block.Shape().rows);
  const auto cols = static_cast<std::size_t>(block.Shape().cols);
  return WithElements(
      block.Elements(), [&]<class T>(std::span<T> elements) requires(
                            std::is_invocable_v<F, kernel::MatrixSpan<T>>) {
        return f(kernel::MatrixSpan<T>(elements, rows, cols));
      });
}

template <class F>
void WithMatrixWords(const MatrixBlock& block, F&& f) {
  WithWords(block.Elements(), [&]<class W>(std::span<W>) {
    if constexpr (sizeof(W) <= 16) f(block.As<W>());
  });
}

// As FillLayer for a target of this shape, whose elements compute(MatrixBlock&) writes.
template <class Compute>
void FillMatrix(const Layer& target, unsigned type_id, const LayerShape& shape, bool is_read,
                Compute&& compute) {
  member::Check(CheckShape(type_id, shape));
  FillLayer(target, type_id, shape, is_read, [&](const ElementSpan& elements) {
    MatrixBlock block(type_id, elements.data, shape);
    compute(block);
  });
}

}  // namespace vela

template <class T>
class TCOneMatrix : public vela::MatrixBlock {
 public:
  TCOneMatrix() : MatrixBlock(vela::kElement<T>.type_id) {}
  TCOneMatrix(void* data, const vela::LayerShape& shape)
      : MatrixBlock(vela::kElement<T>.type_id, data, shape) {}
};

// The layers that a matrix object owns.
template <class T>
using CArrayOfMatrices = std::vector<TCOneMatrix<T>>;

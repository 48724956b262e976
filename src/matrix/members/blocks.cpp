// Blocks of elements: between matrices, joined, repeated, framed, reduced.
#include <algorithm>
#include <cstring>
#include <optional>

#include "frame/container/container_arguments.h"
#include "kernel/block.h"
#include "kernel/pad.h"
#include "kernel/remove_rows.h"
#include "kernel/shrink.h"
#include "matrix/matrix_base.h"

using vela::ConstElementSpan;
using vela::Contents;
using vela::ElementMemory;
using vela::ElementSpan;
using vela::Layer;
using vela::LayerElements;
using vela::LayerShape;
using vela::MatrixBlock;
using vela::kernel::MatrixSpan;
using vela::member::Arguments;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;
namespace kernel = vela::kernel;

namespace {

// Part of a matrix: rows by cols elements from (row, col) on.
struct Block {
  std::int64_t row, col, rows, cols;
  bool IsEmpty() const { return rows <= 0 || cols <= 0; }
};

MatrixBlock BlockOfLayer(const Layer& layer, const vela::ElementSpan& elements) {
  return MatrixBlock(layer.TypeId(), elements.data, layer.Shape());
}

// Copies the block, which lies inside from, to (row, col) of to, where it fits; they are of one
// element type and may be the same.
void CopyWithin(const MatrixBlock& from, const Block& block, const MatrixBlock& to,
                std::int64_t row, std::int64_t col) {
  if (block.IsEmpty()) return;
  const auto index = [](std::int64_t i) { return static_cast<std::size_t>(i); };
  vela::WithMatrixWords(from, [&]<class W>(MatrixSpan<W> x) {
    kernel::CopyBlock<W>(x, index(block.row), index(block.col), to.As<W>(), index(row), index(col),
                         index(block.rows), index(block.cols));
  });
}

// The same between any element types, converted.
void CopyConverted(const MatrixBlock& from, const Block& block, const MatrixBlock& to,
                   std::int64_t row, std::int64_t col) {
  const unsigned type_id = from.Elements().type_id;
  if (to.Elements().type_id == type_id) return CopyWithin(from, block, to, row, col);
  if (block.IsEmpty()) return;
  const LayerShape shape{block.rows, block.cols};
  const ElementMemory values(type_id, static_cast<std::size_t>(shape.Size()));
  CopyWithin(from, block, MatrixBlock(type_id, values.Span().data, shape), 0, 0);
  const ElementMemory converted(to.Elements().type_id, values.Span().size);
  vela::ConvertElements(values.Span(), converted.Span());
  CopyWithin(MatrixBlock(to.Elements().type_id, converted.Span().data, shape),
             {0, 0, block.rows, block.cols}, to, row, col);
}

// A last index as arguments give it: -1 stands for the last of count, and so does what is beyond
// it by more than `slack`.
std::int64_t LastIndex(int last, std::int64_t count, int slack) {
  return last == -1 || last >= count + slack ? count - 1 : last;
}

}  // namespace

// GetSubMatrix(matrix& dest, int c1, int c2, int r1, int r2): dest becomes those columns of those
// rows; -1 or more than there are is the last one. A bound of exactly the count stands as it is:
// the column or row that does not exist is zero. 1, or 0 for bounds that hold nothing.
// GetSubMatrix(matrix& dest, vector<int> indices, int mode): the listed rows (1) or columns (2); 0
// for an index outside the matrix, -1 for indices that are no integers.
int TCAllMatrixNonTemplBase::GetSubMatrix(CTCall* call) {
  return Run(call, vela::member::Between(3, 5), [&](Arguments& args) {
    if (args.Count() == 3) return GetListed(args);
    if (args.Count() != 5) Fail(status::kBadArguments);
    const View view = AddressedData(args);
    const Layer dest = vela::RequiredMatrix(args, 0);
    const LayerShape own = view->Shape();
    const std::int64_t c1 = args.Int(1);
    const std::int64_t c2 = LastIndex(args.Int(2), own.cols, 1);
    const std::int64_t r1 = args.Int(3);
    const std::int64_t r2 = LastIndex(args.Int(4), own.rows, 1);
    if (c1 < 0 || r1 < 0 || c1 > c2 || r1 > r2) return args.Return(0);
    const LayerShape shape{r2 - r1 + 1, c2 - c1 + 1};
    const Block block{r1, c1, std::min(shape.rows, own.rows - r1),
                      std::min(shape.cols, own.cols - c1)};
    vela::FillMatrix(dest, view.layer.TypeId(), shape, dest == view.layer, [&](MatrixBlock& out) {
      const std::span<std::byte> bytes = out.Elements().Bytes();
      if (block.rows < shape.rows || block.cols < shape.cols) {
        std::memset(bytes.data(), 0, bytes.size());
      }
      CopyWithin(*view, block, out, 0, 0);
    });
    args.Return(1);
  });
}

void TCAllMatrixNonTemplBase::GetListed(Arguments& args) {
  const View view = AddressedData(args);
  const Layer dest = vela::RequiredMatrix(args, 0);
  const Layer list = vela::RequiredVector(args, 1);
  const int mode = args.Int(2);
  if (list.TypeId() != kTypeInt && list.TypeId() != kTypeUnsignedInt) return args.Return(-1);
  if (mode != 1 && mode != 2) return args.Return(0);
  const vela::LayerValues<int> indices(list);
  const LayerShape own = view->Shape();
  const std::int64_t count = mode == 1 ? own.rows : own.cols;
  for (const int index : indices.Span()) {
    if (index < 0 || index >= count) return args.Return(0);
  }
  const auto size = static_cast<std::int64_t>(indices.Span().size());
  const LayerShape shape = mode == 1 ? LayerShape{size, own.cols} : LayerShape{own.rows, size};
  vela::FillMatrix(dest, view.layer.TypeId(), shape, dest == view.layer,
                   [&](MatrixBlock& out) { view->SelectLines(indices.Span(), mode == 1, out); });
  args.Return(1);
}

// SetSubMatrix(matrix src, int c1, int r1): overwrites this matrix from (r1, c1) on with as much of
// src as fits; 1, or 0 for a corner outside.
int TCAllMatrixNonTemplBase::SetSubMatrix(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const View view = AddressedData(args);
    const Layer source = vela::RequiredMatrix(args, 0);
    const std::int64_t col = args.Int(1);
    const std::int64_t row = args.Int(2);
    const LayerShape own = view->Shape();
    if (row < 0 || col < 0 || row >= own.rows || col >= own.cols) return args.Return(0);
    const LayerElements values(source);
    const LayerShape shape = source.Shape();
    CopyConverted(
        BlockOfLayer(source, values.Span()),
        {0, 0, std::min(shape.rows, own.rows - row), std::min(shape.cols, own.cols - col)}, *view,
        row, col);
    Update(view.layer.number);
    args.Return(1);
  });
}

// Arguments 1 to 6 are r1, c1, r2, c2, destRow, destCol: copies that block of from to (destRow,
// destCol) of to, which grows where it has to. 1, or 0 for a block or a place that does not exist.
int TCAllMatrixNonTemplBase::CopyBlock(Arguments& args, const Layer& from, const Layer& to) {
  const LayerShape source = from.Shape();
  const std::int64_t row = args.Int(1);
  const std::int64_t col = args.Int(2);
  const std::int64_t last_row = LastIndex(args.Int(3), source.rows, 0);
  const std::int64_t last_col = LastIndex(args.Int(4), source.cols, 0);
  const Block block{row, col, last_row - row + 1, last_col - col + 1};
  const std::int64_t to_row = args.Int(5);
  const std::int64_t to_col = args.Int(6);
  if (row < 0 || col < 0 || block.IsEmpty() || to_row < 0 || to_col < 0) return 0;
  const LayerShape target = to.Shape();
  const LayerShape needed{std::max(target.rows, to_row + block.rows),
                          std::max(target.cols, to_col + block.cols)};
  if (needed != target) to.Resize(needed);
  const LayerElements values(from);
  const LayerElements results(to);
  CopyConverted(BlockOfLayer(from, values.Span()), block, BlockOfLayer(to, results.Span()), to_row,
                to_col);
  results.Commit();
  return 1;
}

int TCAllMatrixNonTemplBase::CopyTo(CTCall* call) {
  return Run(call, Exactly(7), [&](Arguments& args) {
    const View view = AddressedData(args);
    args.Return(CopyBlock(args, view.layer, vela::RequiredMatrix(args, 0)));
  });
}

int TCAllMatrixNonTemplBase::CopyFrom(CTCall* call) {
  return Run(call, Exactly(7), [&](Arguments& args) {
    const Layer own = Addressed(args, status::kNoRow);
    args.Return(CopyBlock(args, vela::RequiredMatrix(args, 0), own));
  });
}

// Concatenate(int dim, matrix src, matrix& result): result becomes this matrix with src below it
// (1) or to its right (2). 0; -1 for matrices of another element type, -2 where the shapes do not
// fit or for another dim.
int TCAllMatrixNonTemplBase::Concatenate(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const View view = AddressedView(args, status::kUnresolved);
    const int dim = args.Int(0);
    const Layer source = vela::RequiredMatrix(args, 1);
    const Layer result = vela::RequiredMatrix(args, 2);
    const unsigned type_id = view.layer.TypeId();
    if (source.TypeId() != type_id || result.TypeId() != type_id) return args.Return(-1);
    const LayerShape own = view->Shape();
    const LayerShape other = source.Shape();
    const bool fits = dim == 1 ? own.cols == other.cols : dim == 2 && own.rows == other.rows;
    if (!fits) return args.Return(-2);
    const LayerShape shape = dim == 1 ? LayerShape{own.rows + other.rows, own.cols}
                                      : LayerShape{own.rows, own.cols + other.cols};
    const LayerElements values(source);
    const bool is_read = result == view.layer || result == source;
    vela::FillMatrix(result, type_id, shape, is_read, [&](MatrixBlock& joined) {
      view->Concatenate(BlockOfLayer(source, values.Span()), joined, dim);
    });
    args.Return(0);
  });
}

int MatrixBlock::Concatenate(const MatrixBlock& source, MatrixBlock& target, int dim) {
  const LayerShape own = Shape();
  CopyWithin(*this, {0, 0, own.rows, own.cols}, target, 0, 0);
  CopyWithin(source, {0, 0, source.Shape().rows, source.Shape().cols}, target,
             dim == 1 ? own.rows : 0, dim == 1 ? 0 : own.cols);
  return 1;
}

// RemoveEmptyRows(int onlyAllMissing, vector<uint>& removed): removes the rows of missing values,
// with 0 also those with some, and lists them. How many, or -(r + 1) for the first row r that is
// partly missing; -1 for another kind of vector. For elements that can be missing: double and
// complex.
int TCAllMatrixNonTemplBase::RemoveEmptyRows(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const unsigned type_id = view.layer.TypeId();
    if (type_id != kTypeDouble && type_id != kTypeComplex) Fail(status::kUnsupported);
    const bool only_all = args.Int(0) != 0;
    const Layer removed = vela::RequiredVector(args, 1);
    if (removed.TypeId() != kTypeUnsignedInt) return args.Return(-1);
    const MatrixBlock* own = BlockOf(view.layer.number);
    if (own != nullptr && own->IsLocked()) Fail(status::kFailed);
    removed.Resize(static_cast<std::size_t>(view->Shape().rows), Contents::kDrop);
    kernel::RemovedRows rows;
    {
      const LayerElements list(removed);
      const std::span<std::uint32_t> positions = list.As<std::uint32_t>();
      rows = type_id == kTypeDouble
                 ? kernel::RemoveRowsWithMissing(view->As<double>(), only_all, positions)
                 : kernel::RemoveRowsWithMissing(view->As<OneTCcomplex>(), only_all, positions);
      if (!removed.Buffer()) list.Commit();
    }
    removed.Resize(rows.removed);
    removed.AnnounceChange();
    Check(ResizeLayer(view.layer.number, {static_cast<std::int64_t>(rows.kept), view->Shape().cols},
                      Contents::kDrop));
    Update(view.layer.number);
    args.Return(rows.first_partial >= 0 ? -static_cast<int>(rows.first_partial + 1)
                                        : static_cast<int>(rows.removed));
  });
}

// Shrink(int colFactor, int rowFactor, int method): each block of so many columns and rows becomes
// one element: 0 the sum, 1 mean, 2 minimum, 3 maximum, 4 median, 5 count of its elements that are
// not missing. 1, or 0 for a factor below 1 or another method.
int TCAllMatrixNonTemplBase::Shrink(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const View view = AddressedData(args);
    const std::int64_t cols = args.Int(0);
    const std::int64_t rows = args.Int(1);
    const int method = args.Int(2);
    if (cols < 1 || rows < 1 || method < 0 ||
        method > static_cast<int>(kernel::BlockStatistic::kCount)) {
      return args.Return(0);
    }
    const auto statistic = static_cast<kernel::BlockStatistic>(method);
    const LayerShape own = view->Shape();
    const LayerShape shape{(own.rows + rows - 1) / rows, (own.cols + cols - 1) / cols};
    const unsigned type_id =
        view.layer.TypeId() == kTypeComplex ? unsigned{kTypeComplex} : unsigned{kTypeDouble};
    const ElementMemory values(type_id, static_cast<std::size_t>(shape.Size()));
    const MatrixBlock out(type_id, values.Span().data, shape);
    vela::WithMatrix(
        *view, [&]<class T>(MatrixSpan<T> x) requires vela::DatasetElement<T> {
          using Result = std::conditional_t<vela::ComplexElement<T>, OneTCcomplex, double>;
          kernel::Shrink<T>(x, static_cast<std::size_t>(rows), static_cast<std::size_t>(cols),
                            statistic, out.As<Result>());
        });
    vela::StoreResult(view.layer, shape, values.Span());
    args.Return(1);
  });
}

// DuplicateBlock(int n): appends n copies of all rows below them; 1, or 0 for no copies or no rows.
int TCAllMatrixNonTemplBase::DuplicateBlock(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer own = AddressedData(args).layer;
    const std::int64_t copies = args.Int(0);
    if (copies < 1) return args.Return(0);
    const LayerShape shape = own.Shape();
    const std::size_t count = own.Size();
    own.Resize(LayerShape{(copies + 1) * shape.rows, shape.cols});
    const LayerElements elements(own);
    if (count > 0) vela::RepeatElements(elements.Span(), count);
    elements.Commit();
    args.Return(1);
  });
}

// Padding(matrix& result, int n, int mode): result becomes this matrix with a border of n: zeros
// (0), the elements mirrored without the edge (1), the edge (2). 1, or 0 for a border that cannot
// be. Status 38 for a result of another element type.
int TCAllMatrixNonTemplBase::Padding(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer result = vela::RequiredMatrix(args, 0);
    const std::int64_t n = args.Int(1);
    const int mode = args.Int(2);
    const LayerShape own = view->Shape();
    const bool mirrors = mode == static_cast<int>(kernel::EdgeMode::kMirror);
    const bool repeats = mode == static_cast<int>(kernel::EdgeMode::kRepeat);
    if (n < 1 || (mirrors && (n >= own.cols || n >= own.rows))) return args.Return(0);
    if (result.TypeId() != view.layer.TypeId()) Fail(status::kOtherElementType);
    if (mode < 0 || mode > static_cast<int>(kernel::EdgeMode::kRepeat) ||
        (repeats && view->Size() == 0)) {
      return args.Return(0);
    }
    const LayerShape shape{own.rows + 2 * n, own.cols + 2 * n};
    vela::FillMatrix(result, view.layer.TypeId(), shape, result == view.layer,
                     [&](MatrixBlock& out) {
                       vela::WithMatrixWords(*view, [&]<class W>(MatrixSpan<W> x) {
                         kernel::Pad<W>(x, static_cast<std::size_t>(n),
                                        static_cast<kernel::EdgeMode>(mode), out.As<W>());
                       });
                     });
    args.Return(1);
  });
}

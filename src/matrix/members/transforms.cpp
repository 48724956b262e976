// Members that rearrange the elements of a layer.
#include <algorithm>
#include <vector>

#include "frame/container/container_arguments.h"
#include "kernel/block.h"
#include "kernel/complex_sort.h"
#include "kernel/flip.h"
#include "kernel/matrix_rotate.h"
#include "kernel/matrix_wrap.h"
#include "kernel/sort.h"
#include "kernel/transpose.h"
#include "kernel/triangle.h"
#include "matrix/matrix_base.h"

using vela::ElementSpan;
using vela::Layer;
using vela::LayerShape;
using vela::MatrixBlock;
using vela::kernel::MatrixSpan;
using vela::member::Arguments;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;
namespace kernel = vela::kernel;

namespace {

std::size_t DiagonalSize(const MatrixBlock& block, int k) {
  return kernel::DiagonalSize(static_cast<std::size_t>(block.Shape().rows),
                              static_cast<std::size_t>(block.Shape().cols), k);
}

}  // namespace

int MatrixBlock::FlipHorizontal() {
  vela::WithMatrixWords(*this, []<class W>(MatrixSpan<W> x) { kernel::FlipHorizontal(x); });
  return 1;
}

int MatrixBlock::FlipVertical() {
  vela::WithMatrixWords(*this, []<class W>(MatrixSpan<W> x) { kernel::FlipVertical(x); });
  return 1;
}

int MatrixBlock::RotateQuarter(int turns) {
  vela::WithMatrixWords(*this, [&]<class W>(MatrixSpan<W> x) { kernel::RotateQuarters(x, turns); });
  if (turns % 2 != 0) std::swap(rows_, cols_);
  return 1;
}

int MatrixBlock::Transpose() {
  vela::WithMatrixWords(*this, []<class W>(MatrixSpan<W> x) { kernel::Transpose(x); });
  std::swap(rows_, cols_);
  return 1;
}

// Elements read in one order and written in the other are those of a transposed matrix.
int MatrixBlock::Reorder(int order) {
  vela::WithMatrixWords(*this, [&]<class W>(MatrixSpan<W> x) {
    kernel::Transpose(order == 0 ? MatrixSpan<W>(x.data, x.cols, x.rows) : x);
  });
  return 1;
}

int MatrixBlock::Wrap(int row_shift, int col_shift) {
  vela::WithMatrixWords(
      *this, [&]<class W>(MatrixSpan<W> x) { kernel::WrapMatrix(x, row_shift, col_shift); });
  return 1;
}

int MatrixBlock::FFTShift(MatrixBlock& target, int dim, bool inverse) {
  const auto split = [&](std::size_t size, int other) {
    return dim == other ? 0 : inverse ? size / 2 : (size + 1) / 2;
  };
  vela::WithMatrixWords(*this, [&]<class W>(MatrixSpan<W> x) {
    kernel::SwapHalves<W>(x, split(x.rows, 2), split(x.cols, 1), target.As<W>());
  });
  return 1;
}

void MatrixBlock::SelectLines(std::span<const int> lines, bool rows, MatrixBlock& target) const {
  const std::span<const std::uint32_t> positions(
      reinterpret_cast<const std::uint32_t*>(lines.data()), lines.size());
  vela::WithMatrixWords(*this, [&]<class W>(MatrixSpan<W> x) {
    if (rows) {
      kernel::SelectRows<W>(x, positions, target.As<W>());
    } else {
      kernel::SelectCols<W>(x, positions, target.As<W>());
    }
  });
}

// The members that change the layer through its view: change(view, args) tells whether it did.
template <class Change>
int TCAllMatrixNonTemplBase::ChangeInPlace(CTCall* call, const vela::member::Arity& arity,
                                           Change&& change) {
  return Run(call, arity, [&](Arguments& args) {
    const View view = AddressedView(args);
    const int result = change(*view, args);
    if (result != 0) {
      Check(TakeShape(view));
      Update(view.layer.number);
    }
    args.Return(result);
  });
}

// FlipHorizontal(): reverses every row; 1.
int TCAllMatrixNonTemplBase::FlipHorizontal(CTCall* call) {
  return ChangeInPlace(call, NoArguments(),
                       [](MatrixBlock& block, Arguments&) { return block.FlipHorizontal(); });
}

// FlipVertical(): reverses the order of the rows; 1.
int TCAllMatrixNonTemplBase::FlipVertical(CTCall* call) {
  return ChangeInPlace(call, NoArguments(),
                       [](MatrixBlock& block, Arguments&) { return block.FlipVertical(); });
}

// Rotate(int angle): counter-clockwise; 1. 0, with nothing changed, for an angle that is no
// multiple of 90, and for a multiple of 360 too.
int TCAllMatrixNonTemplBase::Rotate(CTCall* call) {
  return ChangeInPlace(call, Exactly(1), [](MatrixBlock& block, Arguments& args) {
    const int angle = args.Int(0);
    const int turns = (angle / 90 % 4 + 4) % 4;
    return angle % 90 != 0 || turns == 0 ? 0 : block.RotateQuarter(turns);
  });
}

// Transpose(): 1.
int TCAllMatrixNonTemplBase::Transpose(CTCall* call) {
  return ChangeInPlace(call, NoArguments(),
                       [](MatrixBlock& block, Arguments&) { return block.Transpose(); });
}

// Reorder(int order): the elements, read row by row, fill the columns one after another (0), or
// read column by column fill the rows; 1.
int TCAllMatrixNonTemplBase::Reorder(CTCall* call) {
  return ChangeInPlace(call, Exactly(1), [](MatrixBlock& block, Arguments& args) {
    return block.Reorder(args.Int(0));
  });
}

// Wrap(int rowShift, int colShift): shifts the rows up and the columns left, around the edges; 1.
// The change is not announced.
int TCAllMatrixNonTemplBase::Wrap(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const int row_shift = args.Int(0);
    args.Return(view->Wrap(row_shift, args.Int(1)));
  });
}

// FFTShift(matrix& result, int dim): what was first becomes the middle of the rows (1), of the
// columns (2) or of both (-1). 0, or -1 for another dim. Status 13702 for a result of another
// element type.
int TCAllMatrixNonTemplBase::FFTShift(CTCall* call) { return Shift(call, false); }
int TCAllMatrixNonTemplBase::IFFTShift(CTCall* call) { return Shift(call, true); }

int TCAllMatrixNonTemplBase::Shift(CTCall* call, bool inverse) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer result = vela::RequiredMatrix(args, 0);
    const int dim = args.Int(1);
    if (dim != -1 && dim != 1 && dim != 2) return args.Return(-1);
    if (result.TypeId() != view.layer.TypeId()) Fail(status::kNotContiguous);
    int done = 0;
    vela::FillMatrix(result, result.TypeId(), view->Shape(), false,
                     [&](MatrixBlock& target) { done = view->FFTShift(target, dim, inverse); });
    args.Return(done != 0 ? 0 : -2);
  });
}

// GetLowerTriangular(matrix& result, int diag): the elements on and below that diagonal, positive
// ones right of the main one; the others are zero. 0. Status 13702 for a result of another element
// type.
int TCAllMatrixNonTemplBase::GetLowerTriangular(CTCall* call) {
  return FillTriangle(call, []<class W>(MatrixSpan<const W> x, int diagonal, MatrixSpan<W> out) {
    kernel::KeepLower<W>(x, diagonal, out);
  });
}

// The same with those on and above it.
int TCAllMatrixNonTemplBase::GetUpperTriangular(CTCall* call) {
  return FillTriangle(call, []<class W>(MatrixSpan<const W> x, int diagonal, MatrixSpan<W> out) {
    kernel::KeepUpper<W>(x, diagonal, out);
  });
}

template <class Keep>
int TCAllMatrixNonTemplBase::FillTriangle(CTCall* call, Keep&& keep) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer result = vela::RequiredMatrix(args, 0);
    const int diagonal = args.Int(1);
    if (result.TypeId() != view.layer.TypeId()) Fail(status::kNotContiguous);
    vela::FillMatrix(result, result.TypeId(), view->Shape(), false, [&](MatrixBlock& out) {
      vela::WithMatrixWords(*view, [&]<class W>(MatrixSpan<W> x) {
        keep(MatrixSpan<const W>(x), diagonal, out.As<W>());
      });
    });
    args.Return(0);
  });
}

// MakeIdentity(int rows, int cols): ones on the main diagonal, zeros elsewhere; -1 columns are as
// many as rows. 0, or -1 for other sizes below 1.
int TCAllMatrixNonTemplBase::MakeIdentity(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const Layer own = Addressed(args, status::kNoRow);
    const std::int64_t rows = args.Int(0);
    const int asked = args.Int(1);
    const std::int64_t cols = asked == -1 ? rows : asked;
    if (rows < 1 || cols < 1) return args.Return(-1);
    vela::FillMatrix(own, own.TypeId(), {rows, cols}, false, [&](MatrixBlock& out) {
      const std::span<std::byte> bytes = out.Elements().Bytes();
      std::fill(bytes.begin(), bytes.end(), std::byte{});
      vela::WithMatrix(out, []<class T>(MatrixSpan<T> x) {
        if constexpr (vela::DatasetElement<T>) {
          for (std::size_t i = 0; i < std::min(x.rows, x.cols); ++i) x(i, i) = T(1);
        }
      });
    });
    args.Return(0);
  });
}

// GetDiagonal(vector& v, int k): diagonal k, positive ones right of the main one. 0, or -1 where
// there is no such diagonal.
int TCAllMatrixNonTemplBase::GetDiagonal(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer vector = vela::RequiredVector(args, 0);
    const int k = args.Int(1);
    const std::size_t size = DiagonalSize(*view, k);
    if (size == 0) return args.Return(-1);
    vela::FillLayer(
        vector, view.layer.TypeId(), LayerShape::OneRow(static_cast<std::int64_t>(size)), false,
        [&](const ElementSpan& out) {
          vela::WithMatrixWords(
              *view, [&]<class W>(MatrixSpan<W> x) { kernel::CopyDiagonal<W>(x, k, out.As<W>()); });
        });
    args.Return(0);
  });
}

// SetDiagonal(vector v, int k): overwrites diagonal k as far as v goes. 0, or -1 where there is no
// such diagonal.
int TCAllMatrixNonTemplBase::SetDiagonal(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer vector = vela::RequiredVector(args, 0);
    const int k = args.Int(1);
    const std::size_t size = DiagonalSize(*view, k);
    if (size == 0) return args.Return(-1);
    const vela::ConvertedElements elements(vector, view.layer.TypeId());
    const vela::ConstElementSpan data = elements.Span().From(vector.FirstOfData());
    const vela::ConstElementSpan values = data.Part(0, std::min(size, data.size));
    vela::WithMatrixWords(
        *view, [&]<class W>(MatrixSpan<W> x) { kernel::StoreDiagonal<W>(values.As<W>(), k, x); });
    Update(view.layer.number);
    args.Return(0);
  });
}

namespace {

// In plain numeric order: the missing value is the number that it is.
void SortPlain(const ElementSpan& elements, bool ascending) {
  vela::WithElements(elements, [&]<class T>(std::span<T> values) {
    if constexpr (vela::SimpleElement<T>) {
      kernel::Sort<T>(values, ascending);
    } else if constexpr (vela::ComplexElement<T>) {
      kernel::SortComplex(values, std::span<std::uint32_t>(), ascending);
    }
  });
}

}  // namespace

// Sort(int ascending): all elements as one run, row after row. No result; the change is not
// announced.
int TCAllMatrixNonTemplBase::Sort(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedData(args);
    SortPlain(view->Elements(), args.Int(0) != 0);
  });
}

// ReorderRowWise(vector<uint> order): row k becomes the former row order[k]; 1, or 0 with nothing
// changed when order is no permutation of the rows.
int TCAllMatrixNonTemplBase::ReorderRowWise(CTCall* call) { return ReorderLines(call, true); }

// The same with columns.
int TCAllMatrixNonTemplBase::ReorderColWise(CTCall* call) { return ReorderLines(call, false); }

namespace {

bool IsPermutation(std::span<const int> order, std::int64_t count) {
  if (static_cast<std::int64_t>(order.size()) != count) return false;
  std::vector<bool> taken(order.size());
  for (const int from : order) {
    if (from < 0 || from >= count || taken[static_cast<std::size_t>(from)]) return false;
    taken[static_cast<std::size_t>(from)] = true;
  }
  return true;
}

}  // namespace

int TCAllMatrixNonTemplBase::ReorderLines(CTCall* call, bool rows) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer list = vela::RequiredVector(args, 0);
    if (list.TypeId() != kTypeUnsignedInt && list.TypeId() != kTypeInt) return args.Return(0);
    const vela::LayerValues<int> order(list);
    const LayerShape shape = view->Shape();
    if (!IsPermutation(order.Span(), rows ? shape.rows : shape.cols)) return args.Return(0);
    vela::FillMatrix(view.layer, view.layer.TypeId(), shape, true,
                     [&](MatrixBlock& out) { view->SelectLines(order.Span(), rows, out); });
    args.Return(1);
  });
}

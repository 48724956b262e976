// Rows, columns and all elements of a layer to and from vectors.
#include <algorithm>
#include <optional>

#include "frame/container/container_arguments.h"
#include "kernel/block.h"
#include "kernel/transpose.h"
#include "matrix/matrix_base.h"

using vela::ConstElementSpan;
using vela::ElementSpan;
using vela::Layer;
using vela::kernel::MatrixSpan;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;
namespace kernel = vela::kernel;

namespace {

// The vector to read or fill: 272 for one whose range of data is not sane.
Layer VectorArgument(Arguments& args, unsigned arg) {
  const Layer vector = vela::RequiredVector(args, arg);
  const int lower = vector.LowerBound();
  if (lower < 0 || vector.Size() < static_cast<std::size_t>(lower)) Fail(status::kNotOnOneRow);
  return vector;
}

// The row or column that the argument numbers; 28 for none of count.
std::size_t LineArgument(Arguments& args, unsigned arg, std::int64_t count) {
  const int line = args.Int(arg);
  if (line < 0 || line >= count) Fail(status::kOutOfRange);
  return static_cast<std::size_t>(line);
}

// The vector's data as elements of the type, at most count of them.
class Values {
 public:
  Values(const Layer& vector, unsigned type_id, std::size_t count) {
    const std::size_t first = vector.FirstOfData();
    count = std::min(count, vector.Size() - first);
    if (const ElementSpan buffer = vector.Buffer(); buffer.type_id == type_id) {
      span_ = buffer.Part(first, count);
      return;
    }
    copy_.emplace(type_id, count);
    vela::member::Check(vector.container->ReadElements(vector.number, first, copy_->Span()));
    span_ = copy_->Span();
  }
  const ConstElementSpan& Span() const { return span_; }

 private:
  ConstElementSpan span_;
  std::optional<vela::ElementMemory> copy_;
};

void CopyColumn(const vela::MatrixBlock& block, std::size_t col, const ElementSpan& out) {
  vela::WithMatrixWords(block, [&]<class W>(MatrixSpan<W> x) {
    kernel::CopyBlock<W>(x, 0, col, MatrixSpan<W>(out.As<W>(), x.rows, 1), 0, 0, x.rows, 1);
  });
}

void StoreColumn(const ConstElementSpan& values, const vela::MatrixBlock& block, std::size_t col) {
  vela::WithMatrixWords(block, [&]<class W>(MatrixSpan<W> x) {
    const MatrixSpan<const W> from(values.As<W>().data(), values.size, 1);
    kernel::CopyBlock<W>(from, 0, 0, x, 0, col, values.size, 1);
  });
}

// All elements, column by column.
void CopyColumns(const vela::MatrixBlock& block, const ElementSpan& out) {
  vela::WithMatrixWords(block, [&]<class W>(MatrixSpan<W> x) {
    kernel::Transpose<W>(x, MatrixSpan<W>(out.As<W>(), x.cols, x.rows));
  });
}

// The values fill columns from the first on, the last of them perhaps only in part.
void StoreColumns(const ConstElementSpan& values, const vela::MatrixBlock& block) {
  vela::WithMatrixWords(block, [&]<class W>(MatrixSpan<W> x) {
    if (x.IsEmpty()) return;
    if (values.size == x.Size()) {
      return kernel::Transpose<W>(MatrixSpan<const W>(values.As<W>().data(), x.cols, x.rows), x);
    }
    const std::span<const W> from = values.As<W>();
    for (std::size_t i = 0; i < from.size(); ++i) x(i % x.rows, i / x.rows) = from[i];
  });
}

}  // namespace

// The members that copy a part of the layer into a vector, which becomes as long as the part.
// transfer(view, args) tells how long that is and how it is written.
template <class Transfer>
int TCAllMatrixNonTemplBase::GetLine(CTCall* call, Transfer&& transfer) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const auto [count, write] = transfer(*view, args);
    const Layer vector = VectorArgument(args, 0);
    vela::FillLayer(vector, view.layer.TypeId(),
                    vela::LayerShape::OneRow(static_cast<std::int64_t>(count)), false,
                    [&](const ElementSpan& out) {
                      if (count > 0) write(out);
                    });
    args.Return(1);
  });
}

// The members that store a vector in a part of the layer, as far as either goes.
template <class Transfer>
int TCAllMatrixNonTemplBase::SetLine(CTCall* call, Transfer&& transfer) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const auto [count, store] = transfer(*view, args);
    const Layer vector = VectorArgument(args, 0);
    const Values values(vector, view.layer.TypeId(), count);
    if (values.Span().size > 0) store(values.Span());
    Update(view.layer.number);
    args.Return(1);
  });
}

namespace {

template <class F>
struct Part {
  std::size_t count;
  F transfer;
};
template <class F>
Part(std::size_t, F) -> Part<F>;

}  // namespace

// GetRow(vector& v, int row): 1.
int TCAllMatrixNonTemplBase::GetRow(CTCall* call) {
  return GetLine(call, [](const vela::MatrixBlock& block, Arguments& args) {
    const auto cols = static_cast<std::size_t>(block.Shape().cols);
    const std::size_t row = LineArgument(args, 1, block.Shape().rows);
    return Part{cols, [&block, row, cols](const ElementSpan& out) {
                  vela::ConvertElements(block.Elements().Part(row * cols, cols), out);
                }};
  });
}

// SetRow(vector v, int row): 1.
int TCAllMatrixNonTemplBase::SetRow(CTCall* call) {
  return SetLine(call, [](const vela::MatrixBlock& block, Arguments& args) {
    const auto cols = static_cast<std::size_t>(block.Shape().cols);
    const std::size_t row = LineArgument(args, 1, block.Shape().rows);
    return Part{cols, [&block, row, cols](const ConstElementSpan& values) {
                  vela::ConvertElements(values, block.Elements().Part(row * cols, values.size));
                }};
  });
}

// GetColumn(vector& v, int col): 1.
int TCAllMatrixNonTemplBase::GetColumn(CTCall* call) {
  return GetLine(call, [](const vela::MatrixBlock& block, Arguments& args) {
    const std::size_t col = LineArgument(args, 1, block.Shape().cols);
    return Part{static_cast<std::size_t>(block.Shape().rows),
                [&block, col](const ElementSpan& out) { CopyColumn(block, col, out); }};
  });
}

// SetColumn(vector v, int col): 1.
int TCAllMatrixNonTemplBase::SetColumn(CTCall* call) {
  return SetLine(call, [](const vela::MatrixBlock& block, Arguments& args) {
    const std::size_t col = LineArgument(args, 1, block.Shape().cols);
    return Part{static_cast<std::size_t>(block.Shape().rows),
                [&block, col](const ConstElementSpan& values) { StoreColumn(values, block, col); }};
  });
}

// GetAsVector(vector& v, int byRow): row by row with 1, else column by column; 1.
int TCAllMatrixNonTemplBase::GetAsVector(CTCall* call) {
  return GetLine(call, [](const vela::MatrixBlock& block, Arguments& args) {
    const bool by_row = args.Int(1) == 1;
    return Part{block.Size(), [&block, by_row](const ElementSpan& out) {
                  if (by_row) {
                    vela::ConvertElements(block.Elements(), out);
                  } else {
                    CopyColumns(block, out);
                  }
                }};
  });
}

// SetByVector(vector v, int byRow): fills the layer as far as v goes, in the order that GetAsVector
// reads it; 1.
int TCAllMatrixNonTemplBase::SetByVector(CTCall* call) {
  return SetLine(call, [](const vela::MatrixBlock& block, Arguments& args) {
    const bool by_row = args.Int(1) == 1;
    return Part{block.Size(), [&block, by_row](const ConstElementSpan& values) {
                  if (by_row) {
                    vela::ConvertElements(values, block.Elements().Part(0, values.size));
                  } else {
                    StoreColumns(values, block);
                  }
                }};
  });
}

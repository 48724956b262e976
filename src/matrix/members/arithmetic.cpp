// Arithmetic on whole layers: element by element, along rows and columns, and the inverse.
#include "frame/container/container_arguments.h"
#include "frame/container/layer_operation.h"
#include "frame/interface/operations.h"
#include "kernel/cross.h"
#include "kernel/cumulative.h"
#include "kernel/matrix_difference.h"
#include "kernel/round.h"
#include "matrix/linear_layers.h"
#include "matrix/matrix_base.h"

using vela::DatasetElement;
using vela::Layer;
using vela::LayerElements;
using vela::LayerShape;
using vela::MatrixBlock;
using vela::kernel::MatrixSpan;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;
namespace kernel = vela::kernel;

// DotMultiply(matrix other): this times other, element by element; 1. 0, with nothing changed, for
// another shape and for elements of a type after this matrix's.
int TCAllMatrixNonTemplBase::DotMultiply(CTCall* call) {
  return OperateByElement(call, operation::kMultiply);
}

int TCAllMatrixNonTemplBase::DotDivide(CTCall* call) {
  return OperateByElement(call, operation::kDivide);
}

int TCAllMatrixNonTemplBase::DotPower(CTCall* call) {
  return OperateByElement(call, operation::kPower);
}

int TCAllMatrixNonTemplBase::OperateByElement(CTCall* call, unsigned code) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer other = vela::RequiredMatrix(args, 0);
    if (other.TypeId() > view.layer.TypeId() || other.Shape() != view->Shape()) {
      return args.Return(0);
    }
    const LayerElements values(other);
    vela::ApplyElements(view->Elements(), code, values.Span());
    Update(view.layer.number);
    args.Return(1);
  });
}

// Inverse(): 0; 1 for a matrix that has none or holds a missing value, -1 for one that is not
// square, both left as they are. Floating and complex elements only.
int TCAllMatrixNonTemplBase::Inverse(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    const View view = AddressedView(args);
    if (!vela::HasInverse(view.layer.TypeId())) Fail(status::kUnsupported);
    const LayerShape shape = view->Shape();
    if (shape.rows != shape.cols) return args.Return(-1);
    if (!vela::InvertBlock(*view)) return args.Return(1);
    Update(view.layer.number);
    args.Return(0);
  });
}

// The members that make every element whole, into a result of any type; 0.
int TCAllMatrixNonTemplBase::RoundInto(CTCall* call, vela::kernel::Rounding rounding) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedView(args);
    const unsigned type_id = view.layer.TypeId();
    if (type_id != kTypeFloat && type_id != kTypeDouble) Fail(status::kUnsupported);
    const Layer result = vela::RequiredMatrix(args, 0);
    vela::FillMatrix(result, type_id, view->Shape(), false, [&](MatrixBlock& out) {
      vela::WithMatrix(
          *view, [&]<class T>(MatrixSpan<T> x) requires vela::FloatingElement<T> {
            kernel::RoundElements<T>(x.Values(), rounding, out.As<T>().Values());
          });
    });
    args.Return(0);
  });
}

int TCAllMatrixNonTemplBase::Ceil(CTCall* call) { return RoundInto(call, kernel::Rounding::kCeil); }

int TCAllMatrixNonTemplBase::Floor(CTCall* call) {
  return RoundInto(call, kernel::Rounding::kFloor);
}

int TCAllMatrixNonTemplBase::Fix(CTCall* call) { return RoundInto(call, kernel::Rounding::kFix); }

int TCAllMatrixNonTemplBase::Round(CTCall* call) {
  return RoundInto(call, kernel::Rounding::kRound);
}

// The members that run along rows (dim 2) or columns (1) into a double or complex result, whose
// type is not before this matrix's: accumulate(x, by_rows, out). 0, or -1 for another dim; status
// 13702 for another result.
template <class Accumulate>
int TCAllMatrixNonTemplBase::RunAlong(CTCall* call, Accumulate&& accumulate) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer result = vela::RequiredMatrix(args, 0);
    const int dim = args.Int(1);
    const unsigned type_id = result.TypeId();
    if ((type_id != kTypeDouble && type_id != kTypeComplex) || type_id < view.layer.TypeId()) {
      Fail(status::kNotContiguous);
    }
    if (dim != 1 && dim != 2) return args.Return(-1);
    vela::FillMatrix(result, type_id, view->Shape(), false, [&](MatrixBlock& out) {
      vela::WithMatrix(
          *view, [&]<class T>(MatrixSpan<T> x) requires DatasetElement<T> {
            const MatrixSpan<const T> from(x);
            if constexpr (vela::SimpleElement<T>) {
              if (type_id == kTypeDouble) return accumulate(from, dim == 2, out.As<double>());
            }
            accumulate(from, dim == 2, out.As<OneTCcomplex>());
          });
    });
    args.Return(0);
  });
}

// CumulativeSum(matrix& result, int dim): from a missing value on, the rest of a row or column is
// missing.
int TCAllMatrixNonTemplBase::CumulativeSum(CTCall* call) {
  return RunAlong(call,
                  [](auto x, bool by_rows, auto out) { kernel::CumulativeSum(x, by_rows, out); });
}

int TCAllMatrixNonTemplBase::CumulativeProduct(CTCall* call) {
  return RunAlong(
      call, [](auto x, bool by_rows, auto out) { kernel::CumulativeProduct(x, by_rows, out); });
}

// Difference(matrix& result, int order, int dim): differences of neighbours, taken order times,
// down the columns (1) or along the rows (2); missing ones spread. 0, or -1 for another dim, an
// order below 1, or one that leaves nothing.
int TCAllMatrixNonTemplBase::Difference(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const View view = AddressedData(args);
    const Layer result = vela::RequiredMatrix(args, 0);
    const std::int64_t order = args.Int(1);
    const int dim = args.Int(2);
    LayerShape shape = view->Shape();
    std::int64_t& length = dim == 2 ? shape.cols : shape.rows;
    if ((dim != 1 && dim != 2) || order < 1 || order >= length) return args.Return(-1);
    length -= order;
    vela::FillMatrix(result, view.layer.TypeId(), shape, result == view.layer,
                     [&](MatrixBlock& out) {
                       vela::WithMatrix(
                           *view, [&]<class T>(MatrixSpan<T> x) requires DatasetElement<T> {
                             kernel::MatrixDifference<T>(x, static_cast<std::size_t>(order),
                                                         dim == 2, out.As<T>());
                           });
                     });
    args.Return(0);
  });
}

// Cross(matrix other, matrix& result, int dim): the cross products of the vectors of three in the
// columns (1) or rows (2) of both. 0, or -1 for another dim and for shapes that are not those.
int TCAllMatrixNonTemplBase::Cross(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const View view = AddressedData(args);
    const Layer other = vela::RequiredMatrix(args, 0);
    const Layer result = vela::RequiredMatrix(args, 1);
    const int dim = args.Int(2);
    const LayerShape shape = view->Shape();
    const bool fits = dim == 1 ? shape.rows == 3 : dim == 2 && shape.cols == 3;
    if (!fits || other.Shape() != shape) return args.Return(-1);
    const vela::ConvertedElements values(other, view.layer.TypeId());
    vela::FillMatrix(result, view.layer.TypeId(), shape, false, [&](MatrixBlock& out) {
      vela::WithMatrix(
          *view, [&]<class T>(MatrixSpan<T> x) requires DatasetElement<T> {
            const MatrixSpan<const T> y(values.Span().As<T>(), x.rows, x.cols);
            kernel::Cross<T>(x, y, dim == 2, out.As<T>());
          });
    });
    args.Return(0);
  });
}

// CastToInteger(matrix<int>& result), CastToDouble(matrix& result): the elements converted; 0.
// Status 13702 for a result of another type.
int TCAllMatrixNonTemplBase::CastToInteger(CTCall* call) { return CastTo(call, kTypeInt); }
int TCAllMatrixNonTemplBase::CastToDouble(CTCall* call) { return CastTo(call, kTypeDouble); }

int TCAllMatrixNonTemplBase::CastTo(CTCall* call, unsigned type_id) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedData(args);
    const Layer result = vela::RequiredMatrix(args, 0);
    if (result.TypeId() != type_id) Fail(status::kNotContiguous);
    if (result != view.layer) vela::StoreResult(result, view->Shape(), view->Elements());
    args.Return(0);
  });
}

// What a layer tells of its elements.
#include "frame/container/container_arguments.h"
#include "kernel/matrix_find.h"
#include "kernel/mean.h"
#include "kernel/median.h"
#include "kernel/min_max.h"
#include "kernel/nonzero.h"
#include "kernel/sum_columns.h"
#include "matrix/matrix_base.h"

using vela::DatasetElement;
using vela::ElementSpan;
using vela::Layer;
using vela::LayerElements;
using vela::LayerShape;
using vela::SimpleElement;
using vela::kernel::MatrixSpan;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::NoArguments;
using vela::member::Run;
namespace kernel = vela::kernel;

// The members that return one number: compute(values).
template <class Compute>
int TCAllMatrixNonTemplBase::ReturnStatistic(CTCall* call, Compute&& compute) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    const View view = AddressedData(args);
    args.Return(vela::WithElements(
        vela::ConstElementSpan(view->Elements()), [&]<class T>(std::span<const T>
                                                                   x) requires SimpleElement<T> {
          return compute(x);
        }));
  });
}

// GetMax(): the largest element that is not missing; the missing value without any. A NaN that
// comes first of them is the result.
int TCAllMatrixNonTemplBase::GetMax(CTCall* call) {
  return ReturnStatistic(call, []<class T>(std::span<const T> x) { return kernel::MinMax(x).max; });
}

int TCAllMatrixNonTemplBase::GetMin(CTCall* call) {
  return ReturnStatistic(call, []<class T>(std::span<const T> x) { return kernel::MinMax(x).min; });
}

// GetMean(): of the elements that are not missing; the missing value without any.
int TCAllMatrixNonTemplBase::GetMean(CTCall* call) {
  return ReturnStatistic(call, []<class T>(std::span<const T> x) { return kernel::Mean<T>(x); });
}

// GetMedian(): of all elements, missing ones as the number they are; 0 where one of these lands in
// the middle.
int TCAllMatrixNonTemplBase::GetMedian(CTCall* call) {
  return ReturnStatistic(call, []<class T>(std::span<const T> x) { return kernel::Median<T>(x); });
}

// AllNonZero(vector& result, int dim, double tolerance): 1 for each column (dim 1) or row (2)
// without an element of which tolerance > |x|, else 0. 0, or -1 for another dim.
int TCAllMatrixNonTemplBase::AllNonZero(CTCall* call) {
  return TestNonZero(call, []<class T>(MatrixSpan<const T> x, bool by_rows, double tolerance,
                                       std::span<double> result) {
    kernel::AllNonZero(x, by_rows, tolerance, result);
  });
}

// AnyNonZero(vector& result, int dim, double tolerance): 1 for each column or row with an element
// of which |x| > tolerance.
int TCAllMatrixNonTemplBase::AnyNonZero(CTCall* call) {
  return TestNonZero(call, []<class T>(MatrixSpan<const T> x, bool by_rows, double tolerance,
                                       std::span<double> result) {
    kernel::AnyNonZero(x, by_rows, tolerance, result);
  });
}

template <class Test>
int TCAllMatrixNonTemplBase::TestNonZero(CTCall* call, Test&& test) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const View view = AddressedView(args);
    const Layer result = vela::RequiredVector(args, 0);
    const int dim = args.Int(1);
    const double tolerance = args.Double(2);
    if (dim != 1 && dim != 2) return args.Return(-1);
    const LayerShape shape = view->Shape();
    const auto size = static_cast<std::size_t>(dim == 1 ? shape.cols : shape.rows);
    vela::FillLayer<double>(result, size, false, [&](std::span<double> entries) {
      vela::WithMatrix(
          *view, [&]<class T>(MatrixSpan<T> x) requires DatasetElement<T> {
            test(MatrixSpan<const T>(x), dim == 2, tolerance, entries);
          });
    });
    args.Return(0);
  });
}

// SumColumns(vector& sums): the sum of each column, without its missing values; 0.
int TCAllMatrixNonTemplBase::SumColumns(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedData(args);
    const Layer sums = vela::RequiredVector(args, 0);
    const auto size = static_cast<std::size_t>(view->Shape().cols);
    vela::WithMatrix(
        *view, [&]<class T>(MatrixSpan<T> x) requires DatasetElement<T> {
          using Total = std::conditional_t<vela::ComplexElement<T>, OneTCcomplex, double>;
          vela::FillLayer<Total>(sums, size, false, [&](std::span<Total> totals) {
            kernel::SumColumns(MatrixSpan<const T>(x), totals);
          });
        });
    args.Return(0);
  });
}

// Find(vector<uint>& rows, vector<uint>& cols, double low, double high): the places of the elements
// from low to high, row after row; how many. Missing values are never found. -1 for vectors of
// another type.
int TCAllMatrixNonTemplBase::Find(CTCall* call) {
  return Run(call, Exactly(4), [&](Arguments& args) {
    const View view = AddressedData(args);
    const Layer rows = vela::RequiredVector(args, 0);
    const Layer cols = vela::RequiredVector(args, 1);
    vela::RefuseSameLayer(rows, cols);
    if (rows.TypeId() != kTypeUnsignedInt || cols.TypeId() != kTypeUnsignedInt) {
      return args.Return(-1);
    }
    const unsigned type_id =
        view.layer.TypeId() == kTypeComplex ? unsigned{kTypeComplex} : unsigned{kTypeDouble};
    vela::AnyElement low = vela::ElementArgument(args, 2, type_id);
    vela::AnyElement high = vela::ElementArgument(args, 3, type_id);
    std::vector<unsigned> found_rows, found_cols;
    vela::WithMatrix(
        *view, [&]<class T>(MatrixSpan<T> x) requires DatasetElement<T> {
          using Bound = std::conditional_t<vela::ComplexElement<T>, OneTCcomplex, double>;
          kernel::FindPositions(
              MatrixSpan<const T>(x), low.As<Bound>(), high.As<Bound>(),
              [&](std::span<const std::uint32_t> at_rows, std::span<const std::uint32_t> at_cols) {
                found_rows.insert(found_rows.end(), at_rows.begin(), at_rows.end());
                found_cols.insert(found_cols.end(), at_cols.begin(), at_cols.end());
              });
        });
    vela::StoreResult(rows, vela::ConstElementSpan(std::span<const unsigned>(found_rows)));
    vela::StoreResult(cols, vela::ConstElementSpan(std::span<const unsigned>(found_cols)));
    args.Return(static_cast<unsigned>(found_rows.size()));
  });
}

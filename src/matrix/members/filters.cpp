// Filters over neighbourhoods and frequencies, and replacement of elements by a rule.
#include <cmath>
#include <complex>

#include "frame/container/container_arguments.h"
#include "frame/element_value.h"
#include "frame/interface/missing_value.h"
#include "kernel/correlate.h"
#include "kernel/find.h"
#include "kernel/frequency_filter.h"
#include "kernel/median_filter.h"
#include "kernel/replace.h"
#include "matrix/matrix_base.h"

using vela::ElementSpan;
using vela::Layer;
using vela::LayerShape;
using vela::MatrixBlock;
using vela::SimpleElement;
using vela::kernel::EdgeMode;
using vela::kernel::MatrixSpan;
using vela::member::Arguments;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;
namespace kernel = vela::kernel;

int MatrixBlock::ApplyFilter(MatrixSpan<const double> weights, EdgeMode mode, bool normalise) {
  bool done = false;
  vela::WithMatrix(
      *this, [&]<class T>(MatrixSpan<T> x) requires vela::DatasetElement<T> {
        if constexpr (SimpleElement<T>) {
          done = kernel::Correlate<T>(x, weights, mode, normalise);
        } else {
          done = kernel::CorrelateComplex<T>(x, weights, mode, normalise);
        }
      });
  return done ? 1 : 0;
}

int MatrixBlock::MedianFilter(int size, EdgeMode mode) {
  bool done = false;
  vela::WithMatrix(
      *this, [&]<class T>(MatrixSpan<T> x) requires(SimpleElement<T> && vela::DatasetElement<T>) {
        done = kernel::MedianFilter<T>(x, static_cast<std::size_t>(size), mode);
      });
  return done ? 1 : 0;
}

namespace {

// Only doubles can be missing, alone or as the parts of complex values.
bool HoldsMissing(const ElementSpan& elements) {
  const std::size_t parts = elements.type_id == kTypeComplex  ? 2
                            : elements.type_id == kTypeDouble ? 1
                                                              : 0;
  return kernel::HoldsMissing({static_cast<const double*>(elements.data), parts * elements.size});
}

}  // namespace

// Real elements are filtered as doubles.
int MatrixBlock::FreqFilter(DWORD filter_type, double cutoff, int order, double cutoff2) {
  const auto filter = kernel::MakeFrequencyFilter(filter_type, cutoff, order, cutoff2);
  if (!filter) return 1;
  const ElementSpan own = Elements();
  if (HoldsMissing(own)) return 2;
  const auto rows = static_cast<std::size_t>(rows_);
  const auto cols = static_cast<std::size_t>(cols_);
  if (own.type_id == kTypeComplex) {
    kernel::FilterFrequencies(MatrixSpan(static_cast<std::complex<double>*>(own.data), rows, cols),
                              *filter);
  } else if (own.type_id == kTypeDouble) {
    kernel::FilterFrequencies(As<double>(), *filter);
  } else {
    const vela::ElementMemory values(kTypeDouble, own.size);
    vela::ConvertElements(own, values.Span());
    kernel::FilterFrequencies(MatrixSpan(values.Span().As<double>(), rows, cols), *filter);
    vela::ConvertElements(values.Span(), own);
  }
  return 0;
}

// ApplyFilter(matrix kernel, int edgeMode, int normalise): each element becomes its neighbourhood
// times the kernel, with normalise divided by the kernel's sum. 1, or 0 for a kernel that is not
// square and an edge mode that does not fit.
int TCAllMatrixNonTemplBase::ApplyFilter(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const View view = AddressedView(args);
    if (args.IsNull(0)) Fail(status::kUnresolved);
    if ((args.TypeId(0) & kFlagAnyMatrix) == 0) Fail(status::kBadKernel);
    const Layer weights = vela::RequiredMatrix(args, 0);
    if (weights.TypeId() != kTypeDouble) Fail(status::kBadKernel);
    const LayerShape shape = weights.Shape();
    const EdgeMode mode = static_cast<EdgeMode>(args.Int(1));
    const bool normalise = args.Int(2) != 0;
    if (shape.rows != shape.cols || shape.rows == 0) return args.Return(0);
    const vela::LayerValues<double> values(weights, weights == view.layer);
    const auto side = static_cast<std::size_t>(shape.rows);
    const int done = view->ApplyFilter({values.Span().data(), side, side}, mode, normalise);
    if (done != 0) Update(view.layer.number);
    args.Return(done);
  });
}

// MedianFilter(int size, int edgeMode): each element becomes the median of the size by size ones
// around it. 1, or 0 for an edge mode that does not fit; status 35 for a size below 3.
int TCAllMatrixNonTemplBase::MedianFilter(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const int size = args.Int(0);
    const EdgeMode mode = static_cast<EdgeMode>(args.Int(1));
    if (size <= 2) Fail(status::kWindowTooSmall);
    const int done = view->MedianFilter(size, mode);
    if (done != 0) Update(view.layer.number);
    args.Return(done);
  });
}

// FreqFilter(unsigned rows, unsigned cols, DWORD filterType, double cutoff, int order, double
// cutoff2): gives the layer that shape, its elements as they lie, and filters it. 0; -100 for a
// shape without elements, 1 for an unknown filter, 2 for missing values.
int TCAllMatrixNonTemplBase::FreqFilter(CTCall* call) {
  return Run(call, Exactly(6), [&](Arguments& args) {
    const Layer own = Addressed(args, status::kNoRow);
    const LayerShape shape{args.Unsigned(0), args.Unsigned(1)};
    const DWORD filter_type = args.Dword(2);
    const double cutoff = args.Double(3);
    const int order = args.Int(4);
    const double cutoff2 = args.Double(5);
    if (shape.rows == 0 || shape.cols == 0) return args.Return(-100);
    own.Resize(shape, vela::Contents::kDrop);
    const int result = ViewOf(own)->FreqFilter(filter_type, cutoff, order, cutoff2);
    if (result == 0) Update(own.number);
    args.Return(result);
  });
}

// The members that replace elements beyond a threshold: rule(values, threshold, value).
template <class Rule>
int TCAllMatrixNonTemplBase::ReplaceBeyond(CTCall* call, Rule&& rule) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    const double threshold = args.Double(0);
    vela::AnyElement value = vela::ElementArgument(args, 1, view.layer.TypeId());
    vela::WithElements(
        view->Elements(), [&]<class T>(std::span<T> x) requires SimpleElement<T> {
          rule(x, threshold, value.As<T>());
        });
    Update(view.layer.number);
    args.Return(1);
  });
}

// ReplaceGreaterThan(double threshold, double value): 1. The missing value is the number it is.
int TCAllMatrixNonTemplBase::ReplaceGreaterThan(CTCall* call) {
  return ReplaceBeyond(call, []<class T>(std::span<T> x, double threshold, T value) {
    kernel::ReplaceGreater(x, threshold, value);
  });
}

// ReplaceLessThan(double threshold, double value): 1. The missing value, a number a little below 0,
// is replaced by it too.
int TCAllMatrixNonTemplBase::ReplaceLessThan(CTCall* call) {
  return ReplaceBeyond(call, []<class T>(std::span<T> x, double threshold, T value) {
    kernel::ReplaceLess(x, threshold, value);
  });
}

// Replace(double low, double high, double value, int options = 0): replaces the elements from low
// to high, with option bit 0 the others; missing values stay. How many.
int TCAllMatrixNonTemplBase::Replace(CTCall* call) {
  return Run(call, vela::member::Between(3, 4), [&](Arguments& args) {
    const View view = AddressedData(args);
    const double low = args.Double(0);
    const double high = args.Double(1);
    vela::AnyElement value = vela::ElementArgument(args, 2, view.layer.TypeId());
    const bool outside = args.Count() == 4 && (args.Int(3) & 1) != 0;
    const std::size_t count = vela::WithElements(
        view->Elements(), [&]<class T>(std::span<T> x) requires SimpleElement<T> {
          return kernel::ReplaceInRange(x, low, high, value.As<T>(), outside);
        });
    if (count > 0) Update(view.layer.number);
    args.Return(static_cast<unsigned>(count));
  });
}

// NANtoValue(double value): every NaN becomes the value, or the missing value when that is NaN too.
// No result; the change is not announced.
int TCAllMatrixNonTemplBase::NANtoValue(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedView(args);
    double value = args.Double(0);
    if (std::isnan(value)) value = kMissingValue;
    vela::WithElements(view->Elements(), [&]<class T>(std::span<T> x) {
      if constexpr (vela::FloatingElement<T>) {
        kernel::ReplaceNan<T>(x, vela::ConvertValue<T>(value));
      } else if constexpr (vela::ComplexElement<T>) {
        kernel::ReplaceNan(x, T(value));
      }
    });
  });
}

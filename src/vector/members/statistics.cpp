// Sums, extremes and averages.
#include "frame/container/container_arguments.h"
#include "frame/element_value.h"
#include "frame/library_state.h"
#include "kernel/abs.h"
#include "kernel/complex_parts.h"
#include "kernel/difference.h"
#include "kernel/histogram.h"
#include "kernel/min_max.h"
#include "kernel/moving_average.h"
#include "kernel/product.h"
#include "kernel/sum.h"
#include "vector/vector_base.h"

using vela::ComplexElement;
using vela::Layer;
using vela::LayerElements;
using vela::SimpleElement;
using vela::WithElements;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;
namespace kernel = vela::kernel;

// Sum(total&): the sum of the elements that are not missing, stored by the reference's type; 0.
int TCAllVectorNonTemplBase::Sum(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const LayerElements x = AddressedElements(args);
    const OneTCcomplex total = WithElements(
        vela::ConstElementSpan(x.Span()),
        vela::Overloaded{
            []<SimpleElement T>(std::span<const T> v) { return OneTCcomplex(kernel::Sum<T>(v)); },
            []<ComplexElement T>(std::span<const T> v) { return kernel::Sum(v); }});
    vela::SetTotal(args, 0, x.Span().type_id, total);
    args.Return(0);
  });
}

// Product(product&, int skipMissing): stored in a reference to int, double or complex; 0.
int TCAllVectorNonTemplBase::Product(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const LayerElements x = AddressedElements(args);
    const bool skip_missing = args.Int(1) != 0;
    vela::RefuseNarrowReference(args, 0, x.Span().type_id);
    const OneTCcomplex product = WithElements(
        vela::ConstElementSpan(x.Span()),
        vela::Overloaded{[&]<SimpleElement T>(std::span<const T> v) {
                           return OneTCcomplex(
                               kernel::Product<T>(v, skip_missing, vela::IsDebugMode()).value);
                         },
                         [&]<ComplexElement T>(std::span<const T> v) {
                           return kernel::Product(v, skip_missing);
                         }});
    switch (args.TypeId(0)) {
      case kTypeInt:
        args.Set(0, vela::ConvertValue<int>(product.m_re));
        break;
      case kTypeDouble:
        args.Set(0, product.m_re);
        break;
      case kTypeComplex:
        args.Set(0, product);
        break;
      default:
        break;  // left unset, without error
    }
    args.Return(0);
  });
}

// GetMinMax(min&, max&, iMin&, iMax&): the extremes of the elements that are not missing and their
// first positions, either of which may be NULL; how many are not missing.
int TCAllVectorNonTemplBase::GetMinMax(CTCall* call) {
  return Run(call, Exactly(4), [&](Arguments& args) {
    const LayerElements x = AddressedElements(args);
    vela::RefuseNarrowReference(args, 0, x.Span().type_id);
    vela::RefuseNarrowReference(args, 1, x.Span().type_id);
    const kernel::MinMaxResult result =
        WithElements(vela::ConstElementSpan(x.Span()),
                     []<SimpleElement T>(std::span<const T> v) { return kernel::MinMax<T>(v); });
    args.Set(0, result.min);
    args.Set(1, result.max);
    vela::SetPosition(args, 2, result.min_index);
    vela::SetPosition(args, 3, result.max_index);
    args.Return(static_cast<int>(result.count));
  });
}

// Average(vector source, int points, int extra): the row becomes the centred moving average of the
// source; 0. With points not below the size the row is only resized; below 1 nothing changes.
int TCAllVectorNonTemplBase::Average(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const Layer row = AddressedNumbers(args);
    const Layer source = vela::RequiredVector(args, 0);
    const int points = args.Int(1);
    args.Int(2);  // must be a number, and has no effect
    args.Return(0);
    if (points < 1) return;
    const std::size_t size = source.Size();
    if (static_cast<std::size_t>(points) >= size) return row.Resize(size);
    const vela::LayerValues<double> values(source);
    vela::FillLayer<double>(row, size, source == row, [&](std::span<double> averages) {
      kernel::MovingAverage(values.Span(), static_cast<std::size_t>(points) / 2, averages);
    });
  });
}

// Difference(vector& result): result, of the row's type, becomes the differences of neighbours; 1,
// or 0 for fewer than two elements. The row may be its own result.
int TCAllVectorNonTemplBase::Difference(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = AddressedNumbers(args);
    const Layer result = vela::RequiredVector(args, 0);
    const std::size_t size = row.Size();
    args.Return(0);
    if (size < 2 || result.TypeId() != row.TypeId()) return;
    // A row that is its own result shrinks only after the differences are taken.
    const bool in_place = result == row;
    if (!in_place) result.Resize(size - 1, vela::Contents::kDrop);
    const LayerElements x(row);
    const LayerElements differences(result);
    const vela::ElementSpan out = differences.Span().Part(0, size - 1);
    WithElements(
        x.Span(),
        vela::Overloaded{
            [&]<SimpleElement T>(std::span<T> v) { kernel::Difference<T>(v, out.As<T>()); },
            [&]<ComplexElement T>(std::span<T> v) { kernel::Difference<T>(v, out.As<T>()); }});
    differences.Commit();
    if (in_place) result.Resize(size - 1);
    args.Return(1);
  });
}

// FrequencyCount(vector edges, vector<int>& counts, DWORD options): counts the elements in the bins
// between the ascending edges; option bit 0 adds a bin in front, bit 1 one behind; 0. Status 13702
// for elements other than the simple types up to double.
int TCAllVectorNonTemplBase::FrequencyCount(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const Layer row = AddressedNumbers(args);
    if (row.TypeId() > kTypeDouble) Fail(status::kNotContiguous);
    const Layer edges = vela::RequiredVector(args, 0);
    const Layer counts = vela::RequiredVector(args, 1);
    const DWORD options = args.Dword(2);
    if (counts.TypeId() != kTypeInt) Fail(status::kBadArguments);
    vela::RefuseSameLayer(counts, row);
    vela::RefuseSameLayer(counts, edges);
    const bool underflow = (options & 1) != 0;
    const bool overflow = (options & 2) != 0;
    const vela::LayerValues<double> edge_values(edges);
    counts.Resize(kernel::FrequencyBins(edge_values.Span().size(), underflow, overflow),
                  vela::Contents::kDrop);
    const LayerElements bins(counts);
    WithElements(LayerElements(row).Span(), [&]<SimpleElement T>(std::span<T> v) {
      kernel::FrequencyCount<T>(v, edge_values.Span(), underflow, overflow, bins.As<int>());
    });
    bins.Commit();
    args.Return(0);
  });
}

// Abs(): negates every element below 0; 0.
int TCAllVectorNonTemplBase::Abs(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    RefuseOneRowOfMany(args, status::kNotOnOneRow);
    const LayerElements x = AddressedElements(args);
    WithElements(x.Data(), []<SimpleElement T>(std::span<T> v) { kernel::Abs<T>(v); });
    x.Commit();
    args.Return(0);
  });
}

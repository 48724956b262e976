// Sums, extremes and averages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "kernel/abs.h"
#include "kernel/difference.h"
#include "kernel/histogram.h"
#include "kernel/min_max.h"
#include "kernel/moving_average.h"
#include "kernel/product.h"
#include "kernel/sum.h"
#include "vector/members/sort.h"
#include "vector/typed_vector.h"

namespace vela {

// Stores a position in a by-reference argument unless that is NULL. -1 is all bits set, in an
// unsigned int too, which would store the number -1 as 0.
inline void SetPosition(member::Arguments& args, unsigned arg, std::ptrdiff_t position) {
  if (args.IsNull(arg)) return;
  const bool all_bits = position < 0 && args.TypeId(arg) == kTypeUnsignedInt;
  args.Set(arg, all_bits ? double{std::numeric_limits<std::uint32_t>::max()}
                         : static_cast<double>(position));
}

// The product of complex elements, missing when none is used.
inline OneTCcomplex ComplexProduct(std::span<const OneTCcomplex> values, bool skip_missing) {
  OneTCcomplex product(1);
  bool used = false;
  for (const OneTCcomplex& z : values) {
    if (skip_missing && IsMissingElement(z)) continue;
    product = product * z;
    used = true;
  }
  return used ? product : OneTCcomplex(kMissingValue, kMissingValue);
}

}  // namespace vela

template <class T>
void TCAllVectorsBase<T>::RefuseNarrowReference(vela::member::Arguments& args, unsigned arg) {
  if ((args.TypeId(arg) & kTypeIdMask) < vela::kElement<T>.type_id) {
    vela::member::Fail(status::kNotContiguous);
  }
}

template <class T>
void TCAllVectorsBase<T>::SetTotal(vela::member::Arguments& args, unsigned arg,
                                   const OneTCcomplex& total) {
  RefuseNarrowReference(args, arg);
  const unsigned type_id = args.TypeId(arg) & kTypeIdMask;
  if (type_id < kTypeUnsignedInt) {
    args.Set(arg, vela::ConvertValue<int>(total.m_re));
  } else if (type_id <= kTypeDouble) {
    args.Set(arg, total.m_re);
  } else {
    args.Set(arg, total);
  }
}

template <class T>
template <class Compute>
void TCAllVectorsBase<T>::StoreComputed(int row, std::size_t size, bool reads_row,
                                        Compute&& compute) {
  const auto resize = [&] {
    vela::member::Check(this->RawResize(row, static_cast<std::int64_t>(size)));
  };
  if constexpr (std::is_same_v<T, double>) {
    if (!reads_row) {
      resize();
      RowAccess<T> access(*this, row);
      compute(access.Elements());
      return vela::member::Check(access.Commit());
    }
  }
  std::vector<double> results(size);
  compute(std::span<double>(results));
  resize();
  RowAccess<T> access(*this, row);
  vela::ConvertRun<T>(vela::ElementRun(std::span<const double>(results)), access.Elements());
  vela::member::Check(access.Commit());
}

template <class T>
int TCAllVectorsBase<T>::Sum(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const RowAccess<T> row(*this, this->Row(args));
    if constexpr (vela::SimpleElement<T>) {
      SetTotal(args, 0, vela::kernel::Sum<T>(row.Elements()));
    } else if constexpr (vela::ComplexElement<T>) {
      OneTCcomplex total;
      for (const OneTCcomplex& z : row.Elements()) {
        if (!vela::IsMissingElement(z)) total += z;
      }
      SetTotal(args, 0, total);
    } else {
      Fail(status::kUnsupported);
    }
    args.Return(0);
  });
}

template <class T>
int TCAllVectorsBase<T>::GetMinMax(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(4), [&](Arguments& args) {
    const RowAccess<T> row(*this, this->Row(args));
    if constexpr (vela::SimpleElement<T>) {
      RefuseNarrowReference(args, 0);
      RefuseNarrowReference(args, 1);
      const auto result = vela::kernel::MinMax<T>(row.Elements());
      args.Set(0, result.min);
      args.Set(1, result.max);
      vela::SetPosition(args, 2, result.min_index);
      vela::SetPosition(args, 3, result.max_index);
      args.Return(static_cast<int>(result.count));
    } else {
      Fail(status::kUnsupported);
    }
  });
}

template <class T>
int TCAllVectorsBase<T>::Average(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(3), [&](Arguments& args) {
    const int row = this->Row(args);
    const vela::VectorArgument source = vela::RequiredVector(args, 0);
    const int points = args.Int(1);
    args.Int(2);  // must be a number, and has no effect
    args.Return(0);
    if (points < 1) return;
    const vela::RowElements elements(source);
    const std::size_t size = source.Size();
    if (static_cast<std::size_t>(points) >= size) {
      Check(this->RawResize(row, static_cast<std::int64_t>(size)));
      return;
    }
    const vela::ElementsAs<double> values(elements.Run());
    StoreComputed(row, size, source.IsRow(this, row), [&](std::span<double> averages) {
      vela::kernel::MovingAverage(values.Span(), static_cast<std::size_t>(points) / 2, averages);
    });
  });
}

template <class T>
int TCAllVectorsBase<T>::Product(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(2), [&](Arguments& args) {
    const RowAccess<T> row(*this, this->Row(args));
    const bool skip_missing = args.Int(1) != 0;
    RefuseNarrowReference(args, 0);
    OneTCcomplex product;
    if constexpr (vela::SimpleElement<T>) {
      product = vela::kernel::Product<T>(row.Elements(), skip_missing, vela::IsDebugMode()).value;
    } else if constexpr (vela::ComplexElement<T>) {
      product = vela::ComplexProduct(row.Elements(), skip_missing);
    } else {
      Fail(status::kUnsupported);
    }
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

template <class T>
int TCAllVectorsBase<T>::Difference(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    if constexpr (vela::PointElement<T>) Fail(status::kUnsupported);
    const int row = this->Row(args);
    const vela::VectorArgument target = vela::RequiredVector(args, 0);
    auto* result = vela::TypedVector<T>(target);
    const std::size_t size = this->RowSize(row);
    args.Return(0);
    if (size < 2 || result == nullptr) return;
    // The vector may be its own result, so it shrinks only after the differences are taken.
    const bool in_place = target.IsRow(this, row);
    const auto count = static_cast<std::int64_t>(size) - 1;
    if (!in_place) Check(result->RawResize(target.row, count));
    RowAccess<T> source(*this, row);
    RowAccess<T> differences(*result, target.row);
    const std::span<T> out = differences.Elements().first(size - 1);
    if constexpr (vela::SimpleElement<T>) {
      vela::kernel::Difference<T>(source.Elements(), out);
    } else if constexpr (vela::ComplexElement<T>) {
      for (std::size_t i = 0; i < out.size(); ++i) {
        out[i] = source.Elements()[i + 1] - source.Elements()[i];
      }
    }
    Check(differences.Commit());
    if (in_place) Check(result->RawResize(target.row, count));
    args.Return(1);
  });
}

template <class T>
int TCAllVectorsBase<T>::FrequencyCount(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(3), [&](Arguments& args) {
    const int row = this->Row(args);
    if constexpr (vela::SimpleElement<T> && vela::kElement<T>.type_id <= kTypeDouble) {
      const vela::VectorArgument edges = vela::RequiredVector(args, 0);
      const vela::VectorArgument target = vela::RequiredVector(args, 1);
      auto* counts = vela::TypedVector<int>(target);
      const DWORD options = args.Dword(2);
      if (counts == nullptr) Fail(status::kBadArguments);
      this->RefuseSameRow(target, row);
      if (target.IsRow(edges.vector, edges.row)) Fail(status::kBadArguments);
      const bool underflow = (options & 1) != 0;
      const bool overflow = (options & 2) != 0;
      const vela::RowElements edge_run(edges);
      const vela::ElementsAs<double> edge_values(edge_run.Run());
      const std::size_t bins =
          vela::kernel::FrequencyBins(edge_values.Span().size(), underflow, overflow);
      Check(counts->RawResize(target.row, static_cast<std::int64_t>(bins)));
      const RowAccess<T> elements(*this, row);
      RowAccess<int> bin_counts(*counts, target.row);
      vela::kernel::FrequencyCount<T>(elements.Elements(), edge_values.Span(), underflow, overflow,
                                      bin_counts.Elements());
      Check(bin_counts.Commit());
      args.Return(0);
    } else {
      Fail(status::kNotContiguous);
    }
  });
}

template <class T>
int TCAllVectorsBase<T>::Abs(CTCall* call) {
  using namespace vela::member;
  return Run(call, NoArguments(), [&](Arguments& args) {
    this->RefuseOneRowOfMany(args, status::kNotOnOneRow);
    const int row = this->Row(args);
    if constexpr (vela::SimpleElement<T>) {
      RowAccess<T> elements(*this, row);
      vela::kernel::Abs<T>(elements.Elements().subspan(this->FirstOfData(row)));
      Check(elements.Commit());
      args.Return(0);
    } else {
      Fail(status::kUnsupported);
    }
  });
}

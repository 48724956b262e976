// Sort.
#pragma once

#include <cmath>
#include <numeric>

#include "kernel/sort.h"
#include "vector/typed_vector.h"

namespace vela {

// Whether an element counts as missing for sorting: for complex, either part.
template <class T>
bool IsMissingElement(const T& element) {
  if constexpr (ComplexElement<T>) {
    return element.m_re == kMissingValue || element.m_im == kMissingValue;
  } else if constexpr (SimpleElement<T>) {
    return kernel::IsMissing(element);
  } else {
    return false;
  }
}

inline bool IsNan(const OneTCcomplex& z) { return std::isnan(z.m_re) || std::isnan(z.m_im); }

// Sorts what is not missing; the missing values go to the asked end. Points have no order and stay.
// indices, when not empty, follow the elements.
template <class T>
void SortElements(std::span<T> values, std::span<std::uint32_t> indices, bool ascending,
                  bool missing_first) {
  if constexpr (!PointElement<T>) {
    const std::size_t missing =
        kernel::PartitionMissing(values, indices, missing_first, IsMissingElement<T>);
    const std::size_t start = missing_first ? missing : 0;
    values = values.subspan(start, values.size() - missing);
    if (!indices.empty()) indices = indices.subspan(start, values.size());
    if constexpr (ComplexElement<T>) {
      // A NaN part has no place in the order: such elements come last, as NaN does among numbers.
      kernel::SortBy(values, indices, [&](const T& a, const T& b) {
        if (IsNan(a) || IsNan(b)) return !IsNan(a) && IsNan(b);
        return (ascending ? a < b : b < a) != 0;
      });
    } else if (indices.empty()) {
      kernel::Sort(values, ascending);
    } else {
      kernel::SortWithIndices(values, indices, ascending);
    }
  }
}

}  // namespace vela

template <class T>
int TCAllVectorsBase<T>::Sort(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(4), [&](Arguments& args) {
    const int row = this->Row(args);
    const bool ascending = (args.Int(0) & 1) != 0;
    const bool missing_small = args.Int(1) != 0;
    const vela::VectorArgument target = vela::OptionalVector(args, 2);
    args.Dword(3);  // how the sorter works, not what it yields; must be a number, has no effect
    args.Return(0);
    this->RefuseSameRow(target, row);
    auto* positions = vela::TypedVector<unsigned>(target);
    if (target && positions == nullptr) return;

    RowAccess<T> elements(*this, row);
    const bool missing_first = missing_small == ascending;
    if (positions == nullptr) {
      vela::SortElements(elements.Elements(), {}, ascending, missing_first);
    } else {
      Check(
          positions->RawResize(target.row, static_cast<std::int64_t>(elements.Elements().size())));
      RowAccess<unsigned> indices(*positions, target.row);
      std::iota(indices.Elements().begin(), indices.Elements().end(), 0u);
      vela::SortElements(elements.Elements(), indices.Elements(), ascending, missing_first);
      Check(indices.Commit());
    }
    Check(elements.Commit());
    args.Return(1);
  });
}

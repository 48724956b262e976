// The vector as a list: one element, or a run of equal ones, at a time.
#pragma once

#include "kernel/removal.h"
#include "kernel/sort.h"
#include "vector/element_argument.h"
#include "vector/members/structure.h"
#include "vector/typed_vector.h"

// Add(value): appends the value; its index.
template <class T>
int TCAllVectorsBase<T>::Add(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = this->Row(args);
    const T value = vela::ElementArgument<T>(args, 0);
    const std::size_t size = this->RowSize(row);
    Check(this->RawGrow(row, static_cast<std::int64_t>(size) + 1));
    Check(this->WriteElement(row, size, value));
    this->SetModify(1);
    args.Return(static_cast<int>(size));
  });
}

// SetAtGrow(int nIndex, value): sets an element, growing the row up to it with new elements; 1.
// Status 4 for an index below 0.
template <class T>
int TCAllVectorsBase<T>::SetAtGrow(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(2), [&](Arguments& args) {
    const int row = this->Row(args);
    const int index = args.Int(0);
    const T value = vela::ElementArgument<T>(args, 1);
    if (index < 0) Fail(status::kBadIndex);
    const auto place = static_cast<std::size_t>(index);
    if (place >= this->RowSize(row)) Check(this->RawGrow(row, std::int64_t{index} + 1));
    Check(this->WriteElement(row, place, value));
    this->SetModify(1);
    args.Return(1);
  });
}

// InsertAt(int nIndex, value, int nCount): inserts nCount copies before nIndex, growing the row up
// to it with new elements; 1. Status 28 for an index below 0 or a count below 1.
template <class T>
int TCAllVectorsBase<T>::InsertAt(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(3), [&](Arguments& args) {
    const int row = this->Row(args);
    const int index = args.Int(0);
    const T value = vela::ElementArgument<T>(args, 1);
    const int count = args.Int(2);
    if (index < 0 || count < 1) Fail(status::kOutOfRange);
    InsertElements(row, static_cast<std::size_t>(index), static_cast<std::size_t>(count), value);
    args.Return(1);
  });
}

namespace vela {

// The positions of RemoveAt(int nIndex, int nCount), which lie inside the row, or of
// RemoveAt(vector<int> vnIndices).
inline kernel::Removal RemovalArgument(member::Arguments& args, std::size_t size) {
  if (args.Count() == 1) {
    const RowElements positions(RequiredVector(args, 0));
    const ElementsAs<int> indices(positions.Run());
    std::vector<std::int32_t> ascending(indices.Span().begin(), indices.Span().end());
    kernel::Sort<int>(ascending, true);
    return kernel::PlanRemoval(ascending, size);
  }
  const std::int64_t index = args.Int(0);
  const std::int64_t count = args.Int(1);
  if (index < 0 || count < 1 || index + count > static_cast<std::int64_t>(size)) {
    member::Fail(status::kOutOfRange);
  }
  return {{{static_cast<std::uint32_t>(index), static_cast<std::uint32_t>(index + count)}},
          static_cast<std::size_t>(count),
          true};
}

}  // namespace vela

// RemoveAt(int nIndex, int nCount): removes a run; 1. Status 28 unless the row has all of it.
// RemoveAt(vector<int> vnIndices): removes one element at each position, from the largest to the
// smallest, so that none shifts another; 1. The first position outside the row as it then is ends
// the work with 0, what was removed stays removed. -1 for a vector of another element type.
template <class T>
int TCAllVectorsBase<T>::RemoveAt(CTCall* call) {
  using namespace vela::member;
  return Run(call, Between(1, 2), [&](Arguments& args) {
    const int row = this->Row(args);
    if (args.Count() == 1 && vela::RequiredVector(args, 0) &&
        !vela::IsVectorOf(args, 0, kTypeInt)) {
      return args.Return(-1);
    }
    RowAccess<T> access(*this, row);
    const vela::kernel::Removal removal = vela::RemovalArgument(args, access.Elements().size());
    if (removal.count > 0) {
      const std::size_t kept = vela::kernel::RemoveRuns<T>(access.Elements(), removal.runs);
      Check(access.Commit());
      Check(this->RawResize(row, static_cast<std::int64_t>(kept)));
    }
    args.Return(removal.complete ? 1 : 0);
  });
}

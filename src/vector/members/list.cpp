// The vector as a list: one element, or a run of equal ones, at a time.
#include <vector>

#include "frame/container/container_arguments.h"
#include "kernel/removal.h"
#include "kernel/sort.h"
#include "vector/vector_base.h"

using vela::Layer;
using vela::kernel::Removal;
using vela::member::Arguments;
using vela::member::Between;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;

namespace {

// The positions of RemoveAt(int nIndex, int nCount), which lie inside the row, or of
// RemoveAt(vector<int> vnIndices).
Removal RemovalArgument(Arguments& args, std::size_t size) {
  if (args.Count() == 1) {
    const vela::LayerValues<int> positions(vela::RequiredVector(args, 0));
    std::vector<std::int32_t> ascending(positions.Span().begin(), positions.Span().end());
    vela::kernel::Sort<int>(ascending, true);
    return vela::kernel::PlanRemoval(ascending, size);
  }
  const std::int64_t index = args.Int(0);
  const std::int64_t count = args.Int(1);
  if (index < 0 || count < 1 || index + count > static_cast<std::int64_t>(size)) {
    Fail(status::kOutOfRange);
  }
  return {{{static_cast<std::uint32_t>(index), static_cast<std::uint32_t>(index + count)}},
          static_cast<std::size_t>(count),
          true};
}

}  // namespace

// Add(value): appends the value; its index.
int TCAllVectorNonTemplBase::Add(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = Row(args);
    const std::size_t size = RowSize(row);
    SetElement(row, size, args, 0);
    args.Return(static_cast<int>(size));
  });
}

// SetAtGrow(int nIndex, value): sets an element, growing the row up to it with new elements; 1.
// Status 4 for an index below 0.
int TCAllVectorNonTemplBase::SetAtGrow(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const int row = Row(args);
    const int index = args.Int(0);
    if (index < 0) Fail(status::kBadIndex);
    SetElement(row, static_cast<std::size_t>(index), args, 1);
    args.Return(1);
  });
}

// InsertAt(int nIndex, value, int nCount): inserts nCount copies before nIndex, growing the row up
// to it with new elements; 1. Status 28 for an index below 0 or a count below 1.
int TCAllVectorNonTemplBase::InsertAt(CTCall* call) {
  return Run(call, Exactly(3), [&](Arguments& args) {
    const int row = Row(args);
    const int index = args.Int(0);
    const int count = args.Int(2);
    if (index < 0 || count < 1) Fail(status::kOutOfRange);
    InsertElements(row, static_cast<std::size_t>(index), static_cast<std::size_t>(count), args, 1);
    args.Return(1);
  });
}

// InsertValue(value, int index, int count = 1): inserts count copies before index. 1, or 0 for an
// index outside 0 .. size; status 28 for a count below 1.
int TCAllVectorNonTemplBase::InsertValue(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const int row = Row(args);
    const int index = args.Int(1);
    const int count = args.Count() == 3 ? args.Int(2) : 1;
    if (count < 1) Fail(status::kOutOfRange);
    if (index < 0 || static_cast<std::size_t>(index) > RowSize(row)) return args.Return(0);
    InsertElements(row, static_cast<std::size_t>(index), static_cast<std::size_t>(count), args, 0);
    args.Return(1);
  });
}

// RemoveAt(int nIndex, int nCount): removes a run; 1. Status 28 unless the row has all of it.
// RemoveAt(vector<int> vnIndices): removes one element at each position, from the largest to the
// smallest, so that none shifts another; 1. The first position outside the row as it then is ends
// the work with 0, what was removed stays removed. -1 for a vector of another element type.
int TCAllVectorNonTemplBase::RemoveAt(CTCall* call) {
  return Run(call, Between(1, 2), [&](Arguments& args) {
    const int row = Row(args);
    if (args.Count() == 1 && vela::RequiredVector(args, 0) &&
        !vela::IsVectorOf(args, 0, kTypeInt)) {
      return args.Return(-1);
    }
    const Removal removal = RemovalArgument(args, RowSize(row));
    if (removal.count > 0) RemoveElements(row, removal.runs);
    args.Return(removal.complete ? 1 : 0);
  });
}

// Merge(vector other): appends the elements of other, converted, that the row does not have yet, in
// their order and each once; how many. All NaNs count as one value here, and so do the two zeros.
int TCAllVectorNonTemplBase::Merge(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = Addressed(args);
    const Layer other = vela::RequiredVector(args, 0);
    if (other == row) return args.Return(0);
    args.Return(static_cast<int>(AppendAbsent(row.number, other)));
  });
}

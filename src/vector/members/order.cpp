// Order of the elements, and the removal of missing ones from the ends or everywhere.
#include <numeric>

#include "frame/container/container_arguments.h"
#include "vector/vector_base.h"

using vela::Layer;
using vela::member::Arguments;
using vela::member::Between;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;

// Sort(int order, int missingSmall, vector<uint>& indices, DWORD options): ascending with bit 0 of
// order, else descending; missing elements go to the front when missingSmall and ascending are both
// set or both clear. indices, which may be NULL, becomes the former position of each element. 1, or
// 0 for indices of another type. The options have no effect.
int TCAllVectorNonTemplBase::Sort(CTCall* call) {
  return Run(call, Exactly(4), [&](Arguments& args) {
    const Layer row = Addressed(args);
    const bool ascending = (args.Int(0) & 1) != 0;
    const bool missing_first = (args.Int(1) != 0) == ascending;
    const Layer indices = vela::OptionalVector(args, 2);
    args.Dword(3);  // how the sorter works, not what it yields; must be a number
    args.Return(0);
    vela::RefuseSameLayer(indices, row);
    if (!indices) {
      SortElements(row.number, ascending, missing_first, {});
    } else {
      if (indices.TypeId() != kTypeUnsignedInt) return;
      indices.Resize(row.Size(), vela::Contents::kDrop);
      const vela::LayerElements positions(indices);
      const std::span<unsigned> order = positions.As<unsigned>();
      std::iota(order.begin(), order.end(), 0u);
      SortElements(row.number, ascending, missing_first, order);
      positions.Commit();
    }
    args.Return(1);
  });
}

// Reorder(vector<uint> order): element k becomes the former element order[k]. 1; 0 when order is no
// permutation of the row's positions, which is found while elements are already being written, and
// 0 with nothing written when it has another size or element type.
int TCAllVectorNonTemplBase::Reorder(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = Addressed(args);
    if (!vela::IsVectorOf(args, 0, kTypeUnsignedInt)) return args.Return(0);
    const Layer order = vela::RequiredVector(args, 0);
    if (row.Size() < 2) return args.Return(1);
    const vela::LayerValues<unsigned> positions(order, order == row);
    args.Return(ReorderElements(row.number, positions.Span()) ? 1 : 0);
  });
}

// Wrap(int shift): element i becomes the former element (i + shift) mod size; 1.
int TCAllVectorNonTemplBase::Wrap(CTCall* call) {
  return Run(call, Between(0, 1), [&](Arguments& args) {
    if (args.Count() == 0) Fail(status::kFailed);
    RefuseOneRowOfMany(args, status::kNotOnOneRow);
    RotateElements(Row(args), args.Int(0));
    args.Return(1);
  });
}

// TrimLeft(BOOL shift): unless shift is 0, moves the elements behind the leading missing values
// down over them. How many were removed; -1 for a row without data.
int TCAllVectorNonTemplBase::TrimLeft(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = Addressed(args);
    if (args.Int(0) == 0) return args.Return(0);
    const std::size_t first = row.FirstOfData();
    if (first == row.Size()) return args.Return(-1);
    const std::size_t removed = CountLeadingMissing(row.number, first);
    if (removed > 0) RemoveRange(row.number, first, first + removed);
    args.Return(static_cast<int>(removed));
  });
}

// TrimRight(BOOL delete): unless delete is 0, removes the trailing missing values. How many; -1 for
// a row without data.
int TCAllVectorNonTemplBase::TrimRight(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = Addressed(args);
    if (args.Int(0) == 0) return args.Return(0);
    const std::size_t first = row.FirstOfData();
    if (first == row.Size()) return args.Return(-1);
    const std::size_t removed = CountTrailingMissing(row.number, first);
    const std::size_t size = row.Size();
    if (removed > 0) RemoveRange(row.number, size - removed, size);
    args.Return(static_cast<int>(removed));
  });
}

// Trim(): removes every missing value. 1; 0 for a row without data.
int TCAllVectorNonTemplBase::Trim(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    const Layer row = Addressed(args);
    const std::size_t first = row.FirstOfData();
    if (first == row.Size()) return args.Return(0);
    RemoveMissing(row.number, first);
    args.Return(1);
  });
}

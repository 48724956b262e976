// Elements from one vector to another.
#include <algorithm>

#include "frame/container/container_arguments.h"
#include "frame/interface/operations.h"
#include "vector/vector_base.h"

using vela::Layer;
using vela::kernel::IndexRun;
using vela::member::Arguments;
using vela::member::Between;
using vela::member::Check;
using vela::member::Exactly;
using vela::member::Run;

// Append(source): adds the elements of a vector, or of a matrix row by row, converted, at the end;
// 1.
int TCAllVectorNonTemplBase::Append(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    RefuseOneRowOfMany(args, status::kNotOnOneRow);
    const Layer row = Addressed(args);
    const Layer source = vela::RequiredContainer(args, 0);
    Check(OperateWithLayer(row.number, operation::kAssign, source, operation::kAppend));
    row.AnnounceChange();
    args.Return(1);
  });
}

// CopyData(vector source): the row becomes a copy of the source's elements, converted; 0.
int TCAllVectorNonTemplBase::CopyData(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = Addressed(args);
    const Layer source = vela::RequiredVector(args, 0);
    if (source != row) AssignCopy(row.number, source);
    args.Return(0);
  });
}

// GetSubVector(vector& target, int lower, int upper = -1): elements lower .. upper become target's,
// an upper of -1 or beyond the end meaning the last. 0, or -1 for bounds that hold no element or a
// target that cannot be resized. The target may be this row itself.
int TCAllVectorNonTemplBase::GetSubVector(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const Layer row = Addressed(args);
    const Layer target = vela::RequiredVector(args, 0);
    const int lower = args.Int(1);
    const int last = static_cast<int>(row.Size()) - 1;
    int upper = args.Count() == 3 ? args.Int(2) : -1;
    if (upper == -1 || upper > last) upper = last;
    if (lower < 0 || upper < 0 || lower > upper) return args.Return(-1);

    const auto offset = static_cast<std::size_t>(lower);
    const auto count = static_cast<std::size_t>(upper - lower + 1);
    if (target == row) {
      const auto size = static_cast<std::uint32_t>(last + 1);
      const auto end = static_cast<std::uint32_t>(upper + 1);
      const IndexRun outside[] = {{0, static_cast<std::uint32_t>(lower)}, {end, size}};
      RemoveElements(row.number, outside);
    } else {
      const auto size = static_cast<std::int64_t>(count);
      const vela::LayerShape shape = vela::LayerShape::OneRow(size);
      if (target.container->ResizeLayer(target.number, shape, vela::Contents::kDrop) != 0) {
        return args.Return(-1);
      }
      CopyElements(row.number, offset, count, target);
    }
    args.Return(0);
  });
}

// SetSubVector(vector source, int offset, int count = -1): overwrites elements from offset on with
// the source's first count, a negative count meaning as many as fit. 0, or -1 with nothing written
// for an offset outside the row and for a run that leaves either vector.
int TCAllVectorNonTemplBase::SetSubVector(CTCall* call) {
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const Layer row = Addressed(args);
    const Layer source = vela::RequiredVector(args, 0);
    const std::int64_t offset = args.Int(1);
    std::int64_t count = args.Count() == 3 ? args.Int(2) : -1;
    const auto room = static_cast<std::int64_t>(row.Size()) - offset;
    if (offset < 0 || room <= 0) return args.Return(-1);
    const auto available = static_cast<std::int64_t>(source.Size());
    if (count < 0) count = std::min(available, room);
    if (count > available || count > room) return args.Return(-1);
    OverwriteElements(row.number, static_cast<std::size_t>(offset), source,
                      static_cast<std::size_t>(count));
    args.Return(0);
  });
}

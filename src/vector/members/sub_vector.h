// Runs of elements from one vector to another.
#pragma once

#include <algorithm>

#include "vector/typed_vector.h"

template <class T>
int TCAllVectorsBaseBase<T>::StoreRun(int row, std::size_t offset, const vela::ElementRun& run) {
  RowAccess<T> access(*this, row);
  vela::ConvertRun<T>(run, access.Elements().subspan(offset, run.size));
  return access.Commit();
}

// GetSubVector(vector& target, int lower, int upper = -1): elements lower .. upper become target's,
// an upper of -1 or beyond the end meaning the last. 0, or -1 for bounds that hold no element or a
// target that cannot be resized. The target may be this row itself.
template <class T>
int TCAllVectorsBase<T>::GetSubVector(CTCall* call) {
  using namespace vela::member;
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const int row = this->Row(args);
    const vela::VectorArgument target = vela::RequiredVector(args, 0);
    const int lower = args.Int(1);
    const int last = static_cast<int>(this->RowSize(row)) - 1;
    int upper = args.Count() == 3 ? args.Int(2) : -1;
    if (upper == -1 || upper > last) upper = last;
    if (lower < 0 || upper < 0 || lower > upper) return args.Return(-1);

    const auto count = static_cast<std::size_t>(upper - lower + 1);
    const auto offset = static_cast<std::size_t>(lower);
    if (target.IsRow(this, row)) {
      RowAccess<T> access(*this, row);
      const std::span<T> elements = access.Elements();
      std::copy_n(elements.begin() + lower, count, elements.begin());
      Check(access.Commit());
      Check(this->RawResize(row, static_cast<std::int64_t>(count)));
    } else {
      if (target.vector->RawResize(target.row, static_cast<std::int64_t>(count)) != status::kOk) {
        return args.Return(-1);
      }
      const RowAccess<T> access(*this, row);
      const vela::ElementRun elements(access.Elements().subspan(offset, count));
      Check(target.vector->StoreRun(target.row, 0, elements));
    }
    args.Return(0);
  });
}

// SetSubVector(vector source, int offset, int count = -1): overwrites elements from offset on with
// the source's first count, a negative count meaning as many as fit. 0, or -1 with nothing written
// for an offset outside the row and for a run that leaves either vector.
template <class T>
int TCAllVectorsBase<T>::SetSubVector(CTCall* call) {
  using namespace vela::member;
  return Run(call, Between(2, 3), [&](Arguments& args) {
    const int row = this->Row(args);
    const vela::VectorArgument source = vela::RequiredVector(args, 0);
    const std::int64_t offset = args.Int(1);
    std::int64_t count = args.Count() == 3 ? args.Int(2) : -1;
    const auto room = static_cast<std::int64_t>(this->RowSize(row)) - offset;
    if (offset < 0 || room <= 0) return args.Return(-1);
    const auto available = static_cast<std::int64_t>(source.Size());
    if (count < 0) count = std::min(available, room);
    if (count > available || count > room) return args.Return(-1);

    const vela::RowElements elements(source);
    Check(this->StoreRun(row, static_cast<std::size_t>(offset),
                         elements.Run().Part(0, static_cast<std::size_t>(count))));
    args.Return(0);
  });
}

// CopyData(vector source): the row becomes a copy of the source's elements, converted; 0.
template <class T>
int TCAllVectorsBase<T>::CopyData(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = this->Row(args);
    const vela::VectorArgument source = vela::RequiredVector(args, 0);
    if (!source.IsRow(this, row)) {
      Check(this->RawResize(row, static_cast<std::int64_t>(source.Size())));
      const vela::RowElements elements(source);
      Check(this->StoreRun(row, 0, elements.Run()));
    }
    args.Return(0);
  });
}

// Operators on one element or on a whole row.
#pragma once

#include <algorithm>

#include "frame/element_operation.h"
#include "frame/scalar_operand.h"
#include "kernel/parallel_copy.h"
#include "vector/typed_vector.h"

namespace vela {

// Calls part(begin, end) for runs that cover 0 .. count - 1: on worker threads when the host
// enables parallel work, else one run.
template <class Part>
void ApplyInParallel(std::size_t count, Part&& part) {
  kernel::RunOverThreads(count, VELAObj::IsParallelEnabled() != 0 ? 0 : 1, part);
}

// x = x <code> y for operands of any element type.
template <class T>
void ApplyRun(unsigned code, std::span<T> x, const ElementRun& y, bool guard_multiply) {
  WithElementType(y.type_id, [&]<class U>() {
    const std::span<const U> source = y.As<U>();
    if constexpr (std::is_same_v<T, U>) {
      ApplyOperation<T>(code, x, source, guard_multiply);
    } else if constexpr (SimpleElement<T> && SimpleElement<U>) {
      kernel::ApplyConverted<T, U>(static_cast<kernel::Op>(code), x, source, guard_multiply);
    } else {
      for (std::size_t i = 0; i < x.size(); ++i) {
        ApplyOperation(code, x.subspan(i, 1), OperandAs<T>(source[i]), guard_multiply);
      }
    }
  });
}

// x = y, which differs from a copy in that a NaN becomes the missing value. Large runs are shared
// out over worker threads.
template <class T>
void AssignRun(const ElementRun& y, std::span<T> x) {
  constexpr auto kHoldsNan = []<class U>() {
    return !IntegerElement<U> && !std::is_same_v<U, PointInt>;
  };
  if (!kHoldsNan.template operator()<T>() || !WithElementType(y.type_id, kHoldsNan)) {
    return CopyRun<T>(y, x);
  }
  kernel::RunOverThreads(x.size(), 0, [&](std::size_t begin, std::size_t end) {
    const std::span<T> part = x.subspan(begin, end - begin);
    const ElementRun source = y.Part(begin, end - begin);
    WithElementType(y.type_id, [&]<class U>() {
      if constexpr (FloatingElement<T> && FloatingElement<U> && !std::is_same_v<T, U>) {
        kernel::ConvertWithoutNan(source.As<U>(), part);
      } else {
        ApplyRun<T>(operation::kAssign, part, source, false);
      }
    });
  });
}

}  // namespace vela

template <class T>
int TCAllVectorsBaseBase<T>::Operate2(const MSOINDICES* at, unsigned op,
                                      const tagMSOOBJVECT& operand, unsigned options) try {
  const unsigned code = op & operation::kCodeMask;
  if (!vela::IsOperation<T>(code)) return status::kFailed;
  if (at != nullptr && at->ElementCount() != 0) return OperateOnElement(at, code, operand);
  const int row = this->GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  if (row >= this->RowCount()) return status::kOutOfRange;
  const int result = OperateOnRow(row, code, operand, options);
  this->SetModify(1);
  return result;
} catch (const std::bad_alloc&) {
  return status::kCannotResize;
}

template <class T>
int TCAllVectorsBaseBase<T>::OperateOnElement(const MSOINDICES* at, unsigned code,
                                              const tagMSOOBJVECT& operand) {
  int row;
  std::size_t index;
  if (const int error = Locate(at, row, index); error != status::kOk) return error;
  T value{};
  if (const int error = vela::ReadScalarOperand(operand, value); error != status::kOk) return error;
  T element = ReadElement(row, index);
  vela::ApplyOperation<T>(code, std::span<T>(&element, 1), value, vela::IsDebugMode());
  return WriteElement(row, index, element);
}

template <class T>
int TCAllVectorsBaseBase<T>::OperateOnRow(int row, unsigned code, const tagMSOOBJVECT& operand,
                                          unsigned options) {
  auto* vector = operand.indices.ElementCount() != 0
                     ? nullptr
                     : dynamic_cast<TCAllVectorNonTemplBase*>(operand.object);
  if (vector == nullptr) {
    T value{};
    if (const int error = vela::ReadScalarOperand(operand, value); error != status::kOk) {
      return error;
    }
    if (this->RowSize(row) == 0 && this->RowLowerBound(row) == 0) {
      if (const int error = this->RawResize(row, 1); error != status::kOk) return error;
    }
    SetSizeFixed(row);
    RowAccess<T> elements(*this, row);
    vela::ApplyOperation<T>(code, elements.Elements().subspan(this->FirstOfData(row)), value,
                            vela::IsDebugMode());
    return elements.Commit();
  }

  const vela::VectorArgument source{vector, vector->GetVecArrayIndex(&operand.indices)};
  if (source.row < 0 || source.row >= vector->RowCount()) return status::kOutOfRange;
  if (code == operation::kAssign) return AssignRow(row, source, options);

  const bool broadcast = (options & operation::kBroadcast) != 0 && source.Size() == 1;
  const int lower = vector->RowLowerBound(source.row);
  if (!broadcast) {
    if (IsSizeFixed(row)) {
      if (source.Size() != this->RowSize(row) || lower != this->RowLowerBound(row)) {
        return status::kFailed;
      }
    } else {
      const auto size = static_cast<std::int64_t>(source.Size());
      if (const int error = this->ResizeWithLowerBound(row, size, lower); error != status::kOk) {
        return error;
      }
    }
  }
  SetSizeFixed(row);
  vela::RowElements operands(source);
  RowAccess<T> elements(*this, row);
  const std::size_t first = this->FirstOfData(row);
  const std::span<T> target = elements.Elements().subspan(first);
  if (broadcast) {
    const vela::ElementsAs<T> value(operands.Run());
    vela::ApplyOperation<T>(code, target, value.Span().front(), vela::IsDebugMode());
  } else {
    const bool guard_multiply = vela::IsDebugMode();
    vela::ApplyInParallel(target.size(), [&](std::size_t begin, std::size_t end) {
      vela::ApplyRun<T>(code, target.subspan(begin, end - begin),
                        operands.Run().Part(first + begin, end - begin), guard_multiply);
    });
  }
  return elements.Commit();
}

template <class T>
int TCAllVectorsBaseBase<T>::AssignRow(int row, const vela::VectorArgument& source,
                                       unsigned options) {
  const bool same_row = source.vector == this && source.row == row;
  const bool append = (options & operation::kAppend) != 0;
  const std::size_t count = source.Size();
  const std::size_t offset = append ? this->RowSize(row) : 0;
  if (same_row && !append) {
    SetSizeFixed(row);
    return status::kOk;
  }

  const int lower = append ? this->RowLowerBound(row) : source.vector->RowLowerBound(source.row);
  const auto size = static_cast<std::int64_t>(offset + count);
  const int error =
      append ? this->RawGrow(row, size) : this->ResizeWithLowerBound(row, size, lower);
  if (error != status::kOk) return error;
  SetSizeFixed(row);

  vela::RowElements values(source);
  RowAccess<T> elements(*this, row);
  vela::AssignRun<T>(values.Run().Part(0, count), elements.Elements().subspan(offset));
  return elements.Commit();
}

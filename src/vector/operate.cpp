// Operators on one element or on a whole row.
#include <optional>

#include "frame/container/container_arguments.h"
#include "frame/element_operation.h"
#include "frame/library_state.h"
#include "frame/scalar_operand.h"
#include "kernel/parallel_copy.h"
#include "vector/vector_base.h"

using vela::ConstElementSpan;
using vela::ElementSpan;
using vela::Layer;
using vela::LayerElements;
using vela::member::Check;

namespace {

// Calls part(begin, end) for runs that cover 0 .. count - 1: on worker threads when the host
// enables parallel work, else one run.
template <class Part>
void ApplyInParallel(std::size_t count, Part&& part) {
  vela::kernel::RunOverThreads(count, VELAObj::IsParallelEnabled() != 0 ? 0 : 1, part);
}

// x = x <code> y for operands of any element type.
template <class T>
void ApplyTo(std::span<T> x, unsigned code, const ConstElementSpan& y, bool guard_multiply) {
  vela::VisitElementType(y.type_id, [&]<class U>() {
    const std::span<const U> source = y.As<U>();
    if constexpr (std::is_same_v<T, U>) {
      vela::ApplyOperation<T>(code, x, source, guard_multiply);
    } else if constexpr (vela::SimpleElement<T> && vela::SimpleElement<U>) {
      vela::kernel::ApplyConverted<T, U>(static_cast<vela::kernel::Op>(code), x, source,
                                         guard_multiply);
    } else {
      for (std::size_t i = 0; i < x.size(); ++i) {
        vela::ApplyOperation(code, x.subspan(i, 1), vela::OperandAs<T>(source[i]), guard_multiply);
      }
    }
  });
}

void ApplyTo(const ElementSpan& x, unsigned code, const ConstElementSpan& y, bool guard_multiply) {
  vela::VisitElementType(x.type_id,
                         [&]<class T>() { ApplyTo(x.As<T>(), code, y, guard_multiply); });
}

bool HoldsNan(unsigned type_id) {
  return vela::WithElementType(
      type_id, []<class T>() { return !vela::IntegerElement<T> && !std::is_same_v<T, PointInt>; });
}

// x = y, which differs from a copy in that a NaN becomes the missing value. Many elements are
// shared out over worker threads.
void AssignElements(const ConstElementSpan& y, const ElementSpan& x) {
  if (!HoldsNan(x.type_id) || !HoldsNan(y.type_id)) return vela::CopyElements(y, x);
  vela::kernel::RunOverThreads(x.size, 0, [&](std::size_t begin, std::size_t end) {
    const ElementSpan part = x.Part(begin, end - begin);
    const ConstElementSpan source = y.Part(begin, end - begin);
    if (x.type_id == kTypeDouble && y.type_id == kTypeFloat) {
      vela::kernel::ConvertWithoutNan(source.As<float>(), part.As<double>());
    } else if (x.type_id == kTypeFloat && y.type_id == kTypeDouble) {
      vela::kernel::ConvertWithoutNan(source.As<double>(), part.As<float>());
    } else {
      ApplyTo(part, operation::kAssign, source, false);
    }
  });
}

}  // namespace

bool TCAllVectorNonTemplBase::IsOperation(unsigned code) const {
  return vela::WithElementType(GetInternalDataTypeID(),
                               [&]<class T>() { return vela::IsOperation<T>(code); });
}

int TCAllVectorNonTemplBase::Operate2(const MSOINDICES* at, unsigned op,
                                      const tagMSOOBJVECT& operand, unsigned options) try {
  const unsigned code = op & operation::kCodeMask;
  if (LayerCount() == 0) return status::kUnsupported;
  if (!IsOperation(code)) return status::kFailed;
  if (at != nullptr && at->ElementCount() != 0) return OperateOnElement(at, code, operand);
  int row;
  if (const int error = LocateRow(at, row); error != status::kOk) return error;
  auto* vector = operand.indices.ElementCount() != 0
                     ? nullptr
                     : dynamic_cast<TCAllVectorNonTemplBase*>(operand.object);
  if (vector == nullptr) return OperateWithValue(row, code, operand);
  const Layer source{vector, vector->GetVecArrayIndex(&operand.indices)};
  if (source.number < 0 || source.number >= vector->LayerCount()) return status::kOutOfRange;
  return OperateWithLayer(row, code, source, options);
} catch (...) {
  return vela::member::StatusOfException();
}

int TCAllVectorNonTemplBase::OperateOnElement(const MSOINDICES* at, unsigned code,
                                              const tagMSOOBJVECT& operand) {
  int row;
  std::size_t index;
  if (const int error = Locate(at, row, index); error != status::kOk) return error;
  vela::VisitElementType(GetInternalDataTypeID(), [&]<class T>() {
    T value{};
    Check(vela::ReadScalarOperand(operand, value));
    T element;
    Check(ReadElements(row, index, ElementSpan(std::span(&element, 1))));
    vela::ApplyOperation<T>(code, std::span<T>(&element, 1), value, vela::IsDebugMode());
    Check(StoreElements(row, index, ConstElementSpan(std::span(&element, 1))));
  });
  return status::kOk;
}

int TCAllVectorNonTemplBase::OperateWithValue(int row, unsigned code,
                                              const tagMSOOBJVECT& operand) {
  const Layer own{this, row};
  vela::VisitElementType(GetInternalDataTypeID(), [&]<class T>() {
    T value{};
    Check(vela::ReadScalarOperand(operand, value));
    if (own.Size() == 0 && own.LowerBound() == 0) own.Resize(1);
    SetSizeFixed(row);
    const LayerElements elements(own);
    vela::ApplyOperation<T>(code, elements.Data().As<T>(), value, vela::IsDebugMode());
    elements.Commit();
  });
  return status::kOk;
}

int TCAllVectorNonTemplBase::OperateWithLayer(int row, unsigned code, const Layer& source,
                                              unsigned options) {
  if (code == operation::kAssign) return AssignLayer(row, source, options);
  const Layer own{this, row};
  const bool broadcast = (options & operation::kBroadcast) != 0 && source.Size() == 1;
  const int lower = source.LowerBound();
  if (!broadcast && IsSizeFixed(row)) {
    if (source.Size() != own.Size() || lower != own.LowerBound()) return status::kFailed;
  } else if (!broadcast) {
    Check(ResizeWithLowerBound(row, static_cast<std::int64_t>(source.Size()), lower));
  }
  SetSizeFixed(row);
  const LayerElements operands(source);
  const LayerElements elements(own);
  const ElementSpan target = elements.Data();
  const bool guard_multiply = vela::IsDebugMode();
  if (broadcast) {
    vela::VisitElementType(target.type_id, [&]<class T>() {
      T value{};
      vela::ConvertElements(operands.Span(), ElementSpan(std::span(&value, 1)));
      vela::ApplyOperation<T>(code, target.As<T>(), value, guard_multiply);
    });
  } else {
    const ConstElementSpan values = operands.Span().From(own.FirstOfData());
    ApplyInParallel(target.size, [&](std::size_t begin, std::size_t end) {
      ApplyTo(target.Part(begin, end - begin), code, values.Part(begin, end - begin),
              guard_multiply);
    });
  }
  elements.Commit();
  return status::kOk;
}

int TCAllVectorNonTemplBase::AssignLayer(int row, const Layer& source, unsigned options) {
  const Layer own{this, row};
  const bool append = (options & operation::kAppend) != 0;
  const std::size_t count = source.Size();
  const std::size_t offset = append ? own.Size() : 0;
  if (source == own && !append) {
    SetSizeFixed(row);
    return status::kOk;
  }
  // Elements that have to be copied are copied first, so that nothing has changed when memory runs
  // out; a row appended to itself is read where it lies after it has grown.
  std::optional<LayerElements> values;
  if (source != own) values.emplace(source);
  const auto size = static_cast<std::int64_t>(offset + count);
  Check(append ? GrowLayer(row, size) : ResizeWithLowerBound(row, size, source.LowerBound()));
  SetSizeFixed(row);
  if (!values) values.emplace(source);
  const LayerElements elements(own);
  AssignElements(values->Span().Part(0, count), elements.Span().From(offset));
  elements.Commit();
  return status::kOk;
}

#include "frame/container/layer_operation.h"

#include "frame/element_operation.h"
#include "frame/library_state.h"
#include "frame/scalar_operand.h"
#include "kernel/parallel_copy.h"

namespace vela {
namespace {

// x = x <code> y for operands of any element type.
template <class T>
void ApplyTo(std::span<T> x, unsigned code, const ConstElementSpan& y, bool guard_multiply) {
  VisitElementType(y.type_id, [&]<class U>() {
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

void ApplyTo(const ElementSpan& x, unsigned code, const ConstElementSpan& y, bool guard_multiply) {
  VisitElementType(x.type_id, [&]<class T>() { ApplyTo(x.As<T>(), code, y, guard_multiply); });
}

bool HoldsNan(unsigned type_id) {
  return WithElementType(
      type_id, []<class T>() { return !IntegerElement<T> && !std::is_same_v<T, PointInt>; });
}

}  // namespace

void ApplyElements(const ElementSpan& x, unsigned code, const ConstElementSpan& y) {
  const bool guard_multiply = IsDebugMode();
  const unsigned threads = VELAObj::IsParallelEnabled() != 0 ? 0 : 1;
  kernel::RunOverThreads(x.size, threads, [&](std::size_t begin, std::size_t end) {
    ApplyTo(x.Part(begin, end - begin), code, y.Part(begin, end - begin), guard_multiply);
  });
}

AnyElement OperandElement(const tagMSOOBJVECT& operand, unsigned type_id) {
  AnyElement value(type_id);
  VisitElementType(type_id,
                   [&]<class T>() { member::Check(ReadScalarOperand(operand, value.As<T>())); });
  return value;
}

void ApplyValue(const ElementSpan& x, unsigned code, const ConstElementSpan& value) {
  VisitElementType(x.type_id, [&]<class T>() {
    ApplyOperation<T>(code, x.As<T>(), value.As<T>().front(), IsDebugMode());
  });
}

void AssignElements(const ConstElementSpan& y, const ElementSpan& x) {
  if (!HoldsNan(x.type_id) || !HoldsNan(y.type_id)) return CopyElements(y, x);
  kernel::RunOverThreads(x.size, 0, [&](std::size_t begin, std::size_t end) {
    const ElementSpan part = x.Part(begin, end - begin);
    const ConstElementSpan source = y.Part(begin, end - begin);
    if (x.type_id == kTypeDouble && y.type_id == kTypeFloat) {
      kernel::ConvertWithoutNan(source.As<float>(), part.As<double>());
    } else if (x.type_id == kTypeFloat && y.type_id == kTypeDouble) {
      kernel::ConvertWithoutNan(source.As<double>(), part.As<float>());
    } else {
      ApplyTo(part, operation::kAssign, source, false);
    }
  });
}

}  // namespace vela

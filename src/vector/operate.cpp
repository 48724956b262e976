// Operators on a whole row.
#include <optional>

#include "frame/container/container_arguments.h"
#include "frame/container/layer_operation.h"
#include "vector/vector_base.h"

using vela::ElementSpan;
using vela::Layer;
using vela::LayerElements;
using vela::member::Check;

int TCAllVectorNonTemplBase::OperateWithValue(int row, unsigned code,
                                              const tagMSOOBJVECT& operand) {
  const Layer own{this, row};
  const vela::AnyElement value = vela::OperandElement(operand, own.TypeId());
  if (own.Size() == 0 && own.LowerBound() == 0) own.Resize(1);
  SetSizeFixed(row);
  const LayerElements elements(own);
  vela::ApplyValue(elements.Data(), code, value.Span());
  elements.Commit();
  return status::kOk;
}

int TCAllVectorNonTemplBase::OperateWith(int row, unsigned code, const Layer& operand,
                                         unsigned options) {
  const bool is_vector = (operand.container->GetTypeID() & kFlagAnyMatrix) == 0;
  if (!is_vector && code != operation::kAssign) return status::kFailed;
  return OperateWithLayer(row, code, operand, options);
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
  if (broadcast) {
    vela::AnyElement value(target.type_id);
    vela::ConvertElements(operands.Span(), value.Span());
    vela::ApplyValue(target, code, value.Span());
  } else {
    vela::ApplyElements(target, code, operands.Span().From(own.FirstOfData()));
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
  vela::AssignElements(values->Span().Part(0, count), elements.Span().From(offset));
  elements.Commit();
  return status::kOk;
}

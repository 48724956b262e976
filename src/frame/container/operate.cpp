// How an operator of the host reaches the elements of a container.
#include "frame/container/automation_input.h"
#include "frame/container/layer.h"
#include "frame/container/layer_operation.h"
#include "frame/element_operation.h"

using vela::ElementSpan;
using vela::Layer;

namespace {

// The automation array that an operand holds, else null.
const VARIANT* ArrayOperand(const tagMSOOBJVECT& operand) {
  if (operand.object == nullptr || operand.object->IsVariantArraySource() == 0) return nullptr;
  const VARIANT* value = operand.object->GetVariantAddress(&operand.indices);
  return value != nullptr && ArrayIn(*value) != nullptr ? value : nullptr;
}

}  // namespace

bool TCAllTensorsBase::IsOperation(unsigned code) const {
  return vela::WithElementType(GetInternalDataTypeID(),
                               [&]<class T>() { return vela::IsOperation<T>(code); });
}

int TCAllTensorsBase::Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                               unsigned options) try {
  const unsigned code = op & operation::kCodeMask;
  if (LayerCount() == 0) return StatusOfNoLayer(status::kUnsupported);
  if (!IsOperation(code)) return status::kFailed;
  if (at != nullptr && at->ElementCount() != 0) return OperateOnElement(at, code, operand);
  int layer;
  if (const int error = LocateLayer(at, layer); error != status::kOk) return error;
  if (const VARIANT* array = ArrayOperand(operand)) {
    return code == operation::kAssign ? SetVariantArray(at, array) : int{status::kFailed};
  }
  auto* container = operand.indices.ElementCount() != 0
                        ? nullptr
                        : dynamic_cast<TCAllTensorsBase*>(operand.object);
  if (container == nullptr) return OperateWithValue(layer, code, operand);
  const Layer source{container, container->GetVecArrayIndex(&operand.indices)};
  if (source.number < 0 || source.number >= container->LayerCount()) {
    return container->StatusOfNoLayer(status::kOutOfRange);
  }
  return OperateWith(layer, code, source, options);
} catch (...) {
  return vela::member::StatusOfException();
}

int TCAllTensorsBase::OperateOnElement(const MSOINDICES* at, unsigned code,
                                       const tagMSOOBJVECT& operand) {
  int layer;
  std::size_t index;
  if (const int error = Locate(at, layer, index); error != status::kOk) return error;
  const vela::AnyElement value = vela::OperandElement(operand, GetInternalDataTypeID());
  vela::AnyElement element(GetInternalDataTypeID());
  if (const int error = ReadElements(layer, index, element.Span()); error != 0) return error;
  vela::ApplyValue(element.Span(), code, value.Span());
  return StoreElements(layer, index, element.Span());
}

int TCAllTensorsBase::OperateWithValue(int layer, unsigned code, const tagMSOOBJVECT& operand) {
  const vela::AnyElement value = vela::OperandElement(operand, GetInternalDataTypeID());
  const vela::LayerElements elements({this, layer});
  vela::ApplyValue(elements.Data(), code, value.Span());
  elements.Commit();
  return status::kOk;
}

int TCAllTensorsBase::OperateWith(int, unsigned, const Layer&, unsigned) {
  return status::kUnsupported;
}

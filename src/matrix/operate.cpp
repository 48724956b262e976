// Operators on a whole layer.
#include <algorithm>
#include <cmath>
#include <optional>

#include "frame/container/container_arguments.h"
#include "frame/container/layer_operation.h"
#include "matrix/linear_layers.h"
#include "matrix/matrix_base.h"

using vela::Layer;
using vela::LayerElements;
using vela::LayerShape;
namespace kernel = vela::kernel;

namespace {

bool IsMatrix(const Layer& layer) { return (layer.container->GetTypeID() & kFlagAnyMatrix) != 0; }

// The exponent when it is a whole number.
std::optional<std::int64_t> WholeNumber(const OneTCcomplex& value) {
  constexpr double kMost = 9007199254740992.0;  // beyond it every double is whole
  if (value.m_im != 0 || std::trunc(value.m_re) != value.m_re || std::abs(value.m_re) > kMost ||
      kernel::IsMissing(value.m_re)) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(value.m_re);
}

}  // namespace

int TCAllMatrixNonTemplBase::AssignLayer(int layer, const Layer& source) {
  const Layer own{this, layer};
  if (source == own) return status::kOk;
  const LayerElements operand(source);
  const vela::ElementSpan values = operand.Data();
  const bool is_matrix = IsMatrix(source);
  if (is_matrix || own.Size() == 0) {
    const LayerShape shape =
        is_matrix ? source.Shape() : LayerShape::OneRow(static_cast<std::int64_t>(values.size));
    if (const int error = ResizeLayer(layer, shape, vela::Contents::kDrop)) return error;
  }
  const LayerElements elements(own);
  const std::size_t count = std::min(elements.Span().size, values.size);
  vela::AssignElements(values.Part(0, count), elements.Span().Part(0, count));
  elements.Commit();
  return status::kOk;
}

int TCAllMatrixNonTemplBase::OperateWithValue(int layer, unsigned code,
                                              const tagMSOOBJVECT& operand) {
  if (code != operation::kPower) return Base::OperateWithValue(layer, code, operand);
  const vela::AnyElement exponent = vela::OperandElement(operand, kTypeComplex);
  const auto whole = WholeNumber(exponent.Span().As<OneTCcomplex>().front());
  return whole ? vela::RaiseLayer({this, layer}, *whole) : int{status::kFailed};
}

int TCAllMatrixNonTemplBase::OperateWith(int layer, unsigned code, const Layer& operand, unsigned) {
  if (code == operation::kAssign) return AssignLayer(layer, operand);
  if (!IsMatrix(operand)) return status::kFailed;
  const Layer own{this, layer};
  switch (code) {
    case operation::kAdd:
    case operation::kSubtract: {
      if (operand.Shape() != own.Shape()) return status::kFailed;
      const LayerElements values(operand);
      const LayerElements elements(own);
      vela::ApplyElements(elements.Span(), code, values.Span());
      elements.Commit();
      return status::kOk;
    }
    case operation::kMultiply:
      return vela::MultiplyLayer(own, operand);
    case operation::kDivide:
      return vela::DivideLayer(own, operand);
    default:
      return status::kFailed;
  }
}

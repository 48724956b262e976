// Containers as automation arrays.
#include "frame/container/automation_input.h"
#include "frame/container/layer.h"
#include "frame/interface/automation_values.h"
#include "frame/interface/missing_value.h"

using vela::member::Check;

namespace {

bool IsWhole(const MSOINDICES* at) { return at == nullptr || at->ElementCount() == 0; }

// Values of several numbers have no automation type of their own; they are arrays in variants.
bool HasParts(unsigned type_id) {
  return vela::WithElementType(
      type_id, []<class T>() { return vela::ComplexElement<T> || vela::PointElement<T>; });
}

// The record of an element, by its place in the layer row by row.
MSOINDICES ElementAt(const vela::Layer& layer, bool is_matrix, std::size_t index) {
  if (!is_matrix) return layer.Indices().WithElement(static_cast<std::int32_t>(index));
  const auto cols = static_cast<std::size_t>(layer.Shape().cols);
  return layer.Indices().WithCell(static_cast<std::int32_t>(index / cols),
                                  static_cast<std::int32_t>(index % cols));
}

}  // namespace

CComVariant TCAllTensorsBase::AsArray(int layer, const vela::ArrayLayout& layout) {
  const vela::LayerElements elements({this, layer});
  return vela::MakeArray(elements.Span(), layout);
}

int TCAllTensorsBase::GetVariantArray(const MSOINDICES* at, VARIANT* value, int lower_bound) try {
  if (value == nullptr) return status::kBadArguments;
  int number;
  if (const int error = LocateLayer(at, number); error != status::kOk) return error;
  const vela::Layer layer{this, number};
  const bool is_matrix = (GetTypeID() & kFlagAnyMatrix) != 0;
  vela::ArrayLayout layout{is_matrix, 1, lower_bound, false};
  if (is_matrix) layout.columns = std::max(static_cast<std::int32_t>(layer.Shape().cols), 1);
  CComVariant array;
  if (!HasParts(GetInternalDataTypeID())) {
    array = AsArray(number, layout);
  } else {
    layout.variants = true;
    array = vela::MakeArray(VT_VARIANT, layer.Size(), layout, [&](std::size_t i) {
      const MSOINDICES element = ElementAt(layer, is_matrix, i);
      CComVariant made;
      Check(GetIntoVariant(&element, &made));
      return made.Detach();
    });
  }
  CComVariant::Check(VariantClear(value));
  *value = array.Detach();
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

int TCAllTensorsBase::SetVariantArray(const MSOINDICES* at, const VARIANT* value) try {
  if (value == nullptr) return status::kBadArguments;
  int number;
  if (const int error = LocateLayer(at, number); error != status::kOk) return error;
  const auto shape = vela::ShapeOfArray(ArrayIn(*value));
  if (!shape) return status::kBadValue;
  const vela::Layer layer{this, number};
  if (vela::IsReal(layer)) {
    const auto numbers = vela::ReadArray(*value);
    vela::StoreResult(layer, numbers->shape, numbers->elements.Span());
    return status::kOk;
  }
  const bool is_matrix = (GetTypeID() & kFlagAnyMatrix) != 0;
  layer.Resize(*shape, vela::Contents::kDrop);
  vela::ForEachValue(*value, [&](std::size_t i, const VARIANT& cell) {
    const MSOINDICES element = ElementAt(layer, is_matrix, i);
    if (SetFromVariant(&element, &cell) != status::kOk) SetDouble(&element, kMissingValue);
  });
  layer.AnnounceChange();
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

int TCAllTensorsBase::GetIntoVariant(const MSOINDICES* at, VARIANT* value) {
  return IsWhole(at) ? GetVariantArray(at, value, 0) : TesselCObject::GetIntoVariant(at, value);
}

int TCAllTensorsBase::SetFromVariant(const MSOINDICES* at, const VARIANT* value) {
  if (value == nullptr) return status::kBadArguments;
  if (!IsWhole(at)) return TesselCObject::SetFromVariant(at, value);
  if (ArrayIn(*value) != nullptr) return SetVariantArray(at, value);
  if (vela::ElementWidth(GetInternalDataTypeID()) == 0) return status::kBadValue;
  VariantNumber number;
  if (const int error = NumberOfVariant(*value, number); error != status::kOk) return error;
  const auto plain = std::visit(
      [](auto n) {
        if constexpr (std::is_same_v<decltype(n), double>) {
          return tagMSOOBJVECT::Plain(n, kTypeDouble);
        } else {
          return tagMSOOBJVECT::Plain(n);
        }
      },
      number);
  return Operate2(at, operation::kAssign | operation::kPlainOperand, plain, 0);
}

#include "frame/container/automation_input.h"

#include <algorithm>
#include <cstring>

#include "frame/container/locked_array.h"
#include "frame/interface/automation_values.h"
#include "frame/interface/host_services.h"
#include "frame/interface/missing_value.h"
#include "kernel/transpose.h"

namespace vela {
namespace {

std::int64_t Extent(SAFEARRAY* array, UINT dimension) {
  LONG lower = 0, upper = -1;
  if (FAILED(SafeArrayGetLBound(array, dimension, &lower)) ||
      FAILED(SafeArrayGetUBound(array, dimension, &upper))) {
    return 0;
  }
  return std::int64_t{upper} - lower + 1;
}

// The element type whose numbers an array of that automation type holds as they are.
unsigned ElementTypeOf(VARTYPE type) {
  if (type == VT_BOOL) return kTypeNone;
  unsigned type_id = kTypeNone;
  ForEachElementType([&]<class T>() {
    if (SimpleElement<T> && GetVariantTypeFromSimpleType(kElement<T>.type_id) == type) {
      type_id = kElement<T>.type_id;
    }
  });
  return type_id;
}

// Cells lie column after column.
class Cells {
 public:
  Cells(const VARIANT& value, SAFEARRAY* array, const LayerShape& shape)
      : locked_(array),
        type_(static_cast<VARTYPE>(value.vt & VT_TYPEMASK)),
        size_(SafeArrayGetElemsize(array)),
        shape_(shape) {}
  const void* Data() const { return locked_.Get(); }

  // A look at an element of any type.
  VARIANT At(std::int64_t row, std::int64_t col) const {
    const auto* cell = static_cast<const std::byte*>(locked_.Get()) +
                       static_cast<std::size_t>(col * shape_.rows + row) * size_;
    VARIANT value{};
    if (type_ == VT_VARIANT) {
      std::memcpy(&value, cell, sizeof(VARIANT));
      return value;
    }
    if (type_ == VT_DECIMAL) {
      std::memcpy(&value.decVal, cell, sizeof(DECIMAL));
    } else {
      std::memcpy(&value.llVal, cell, std::min(size_, sizeof value.llVal));
    }
    value.vt = type_;
    return value;
  }

 private:
  LockedArray locked_;
  VARTYPE type_;
  std::size_t size_;
  LayerShape shape_;
};

}  // namespace

std::optional<LayerShape> ShapeOfArray(SAFEARRAY* array) {
  switch (array != nullptr ? SafeArrayGetDim(array) : 0) {
    case 1:
      return LayerShape::OneRow(Extent(array, 1));
    case 2:
      return LayerShape{Extent(array, 1), Extent(array, 2)};
    default:
      return std::nullopt;
  }
}

void ForEachValue(const VARIANT& array,
                  const std::function<void(std::size_t, const VARIANT&)>& store) {
  const auto shape = ShapeOfArray(ArrayIn(array));
  if (!shape || shape->Size() == 0) return;
  const Cells cells(array, ArrayIn(array), *shape);
  std::size_t i = 0;
  for (std::int64_t row = 0; row < shape->rows; ++row) {
    for (std::int64_t col = 0; col < shape->cols; ++col) store(i++, cells.At(row, col));
  }
}

std::optional<ArrayNumbers> ReadArray(const VARIANT& value) {
  SAFEARRAY* array = ArrayIn(value);
  const auto shape = ShapeOfArray(array);
  if (!shape) return std::nullopt;
  const unsigned type_id = ElementTypeOf(static_cast<VARTYPE>(value.vt & VT_TYPEMASK));
  const bool is_element =
      type_id != kTypeNone && ElementWidth(type_id) == SafeArrayGetElemsize(array);
  ArrayNumbers numbers{*shape, ElementMemory(is_element ? type_id : unsigned{kTypeDouble},
                                             static_cast<std::size_t>(shape->Size()))};
  if (!is_element) {
    const std::span<double> out = numbers.elements.Span().As<double>();
    ForEachValue(value,
                 [&](std::size_t i, const VARIANT& cell) { out[i] = DoubleOfVariant(cell); });
    return numbers;
  }
  const Cells cells(value, array, *shape);
  WithWords(numbers.elements.Span(), [&]<class W>(std::span<W> out) {
    if constexpr (sizeof(W) <= 8) {
      const auto rows = static_cast<std::size_t>(shape->rows);
      const auto cols = static_cast<std::size_t>(shape->cols);
      const kernel::MatrixSpan<const W> columns(static_cast<const W*>(cells.Data()), cols, rows);
      kernel::Transpose<W>(columns, kernel::MatrixSpan<W>(out, rows, cols));
    }
  });
  return numbers;
}

}  // namespace vela

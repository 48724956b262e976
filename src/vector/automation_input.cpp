#include "vector/automation_input.h"

#include <cstring>

#include "frame/interface/host_services.h"
#include "frame/interface/missing_value.h"
#include "kernel/transpose.h"
#include "vector/locked_array.h"

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

SAFEARRAY* ArrayIn(const VARIANT& value) {
  if ((value.vt & VT_ARRAY) == 0) return nullptr;
  if ((value.vt & VT_BYREF) == 0) return value.parray;
  return value.pparray != nullptr ? *value.pparray : nullptr;
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

// One element of any automation type as a number.
double NumberIn(const std::byte* cell, VARTYPE type, std::size_t size) {
  VARIANT element{};
  if (type == VT_VARIANT) {
    std::memcpy(&element, cell, sizeof(VARIANT));
  } else if (type == VT_DECIMAL) {
    std::memcpy(&element, cell, sizeof(VARIANT) < size ? sizeof(VARIANT) : size);
    element.vt = VT_DECIMAL;
  } else {
    element.vt = type;
    std::memcpy(&element.llVal, cell, size < sizeof(element.llVal) ? size : sizeof(element.llVal));
  }
  if (element.vt == VT_EMPTY || element.vt == VT_NULL) return kMissingValue;
  VARIANT number{};
  return SUCCEEDED(VariantChangeType(&number, &element, 0, VT_R8)) ? number.dblVal : kMissingValue;
}

// Cells lie column after column.
void ReadNumbers(const void* cells, VARTYPE type, std::size_t size, const LayerShape& shape,
                 std::span<double> out) {
  const auto* cell = static_cast<const std::byte*>(cells);
  const auto rows = static_cast<std::size_t>(shape.rows);
  const auto cols = static_cast<std::size_t>(shape.cols);
  for (std::size_t col = 0; col < cols; ++col) {
    for (std::size_t row = 0; row < rows; ++row, cell += size) {
      out[row * cols + col] = NumberIn(cell, type, size);
    }
  }
}

}  // namespace

std::optional<ArrayNumbers> ReadArray(const VARIANT& value) {
  SAFEARRAY* array = ArrayIn(value);
  const UINT dimensions = array != nullptr ? SafeArrayGetDim(array) : 0;
  if (dimensions != 1 && dimensions != 2) return std::nullopt;
  LayerShape shape = LayerShape::OneRow(Extent(array, 1));
  if (dimensions == 2) shape = {Extent(array, 1), Extent(array, 2)};
  const auto type = static_cast<VARTYPE>(value.vt & VT_TYPEMASK);
  const std::size_t size = SafeArrayGetElemsize(array);
  const unsigned type_id = ElementTypeOf(type);
  const bool is_element = type_id != kTypeNone && ElementWidth(type_id) == size;
  ArrayNumbers numbers{shape, ElementMemory(is_element ? type_id : unsigned{kTypeDouble},
                                            static_cast<std::size_t>(shape.Size()))};
  const LockedArray cells(array);
  if (!is_element) {
    ReadNumbers(cells.Get(), type, size, shape, numbers.elements.Span().As<double>());
    return numbers;
  }
  WithWords(numbers.elements.Span(), [&]<class W>(std::span<W> out) {
    if constexpr (sizeof(W) <= 8) {
      const auto rows = static_cast<std::size_t>(shape.rows);
      const auto cols = static_cast<std::size_t>(shape.cols);
      const kernel::MatrixSpan<const W> columns(static_cast<const W*>(cells.Get()), cols, rows);
      kernel::Transpose<W>(columns, kernel::MatrixSpan<W>(out, rows, cols));
    }
  });
  return numbers;
}

}  // namespace vela

#include "vector/automation_array.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>

#include "frame/interface/host_services.h"
#include "platform/automation.h"
#include "vector/automation_values.h"
#include "vector/locked_array.h"

namespace vela {
namespace {

struct DestroyArray {
  void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
using OwnedArray = std::unique_ptr<SAFEARRAY, DestroyArray>;

struct Shape {
  std::size_t rows;
  std::size_t columns;
};

VARIANT& ResultVariant(member::Arguments& args) {
  CScriptVelaObject* object = args.Call().GetReturnObject(0);
  VARIANT* variant = object == nullptr ? nullptr : object->GetVariantAddress(nullptr);
  if (variant == nullptr) member::Fail(status::kFailed);
  return *variant;
}

// The sizes are checked here because not every system's array functions do.
OwnedArray CreateArray(VARTYPE type, std::size_t element_size, const Shape& shape,
                       const ArrayLayout& layout) {
  constexpr std::size_t kMostBytes = std::numeric_limits<std::uint32_t>::max();
  const std::int64_t upper = layout.lower_bound + static_cast<std::int64_t>(shape.rows) - 1;
  if (shape.columns > kMostBytes / element_size / shape.rows ||
      upper > std::numeric_limits<std::int32_t>::max()) {
    member::Fail(status::kArrayFailed);
  }
  SAFEARRAYBOUND bounds[2] = {};
  bounds[0].cElements = static_cast<ULONG>(shape.rows);
  bounds[0].lLbound = layout.two_dimensional ? 0 : layout.lower_bound;
  bounds[1].cElements = static_cast<ULONG>(shape.columns);
  OwnedArray array(SafeArrayCreate(type, layout.two_dimensional ? 2 : 1, bounds));
  if (array == nullptr) member::Fail(status::kArrayFailed);
  if (SafeArrayGetElemsize(array.get()) != element_size) member::Fail(status::kFailed);
  return array;
}

// Calls store(cell, i) for every element i and its cell. Cells lie column after column: a block of
// rows at a time keeps both sides in the cache.
template <class Store>
void ForEachCell(std::size_t count, const Shape& shape, Store store) {
  constexpr std::size_t kBlock = 32;
  const std::size_t columns = std::min(shape.columns, count);
  for (std::size_t top = 0; top < shape.rows; top += kBlock) {
    const std::size_t bottom = std::min(top + kBlock, shape.rows);
    for (std::size_t column = 0; column < columns; ++column) {
      for (std::size_t row = top; row < bottom; ++row) {
        const std::size_t i = shape.columns * row + column;
        if (i < count) store(column * shape.rows + row, i);
      }
    }
  }
}

// Elements of one width are copied alike, whatever they mean.
template <class Word>
void FillNumbers(void* cells, const ConstElementSpan& elements, const Shape& shape) {
  const auto* from = static_cast<const Word*>(elements.data);
  auto* to = static_cast<Word*>(cells);
  if (shape.columns == 1) {
    std::copy_n(from, elements.size, to);
  } else {
    ForEachCell(elements.size, shape, [&](std::size_t cell, std::size_t i) { to[cell] = from[i]; });
  }
}

void FillNumbers(void* cells, const ConstElementSpan& elements, std::size_t width,
                 const Shape& shape) {
  switch (width) {
    case 1:
      return FillNumbers<std::uint8_t>(cells, elements, shape);
    case 2:
      return FillNumbers<std::uint16_t>(cells, elements, shape);
    case 4:
      return FillNumbers<std::uint32_t>(cells, elements, shape);
    default:
      return FillNumbers<std::uint64_t>(cells, elements, shape);
  }
}

void FillVariants(void* cells, const ConstElementSpan& elements, VARTYPE type, std::size_t width,
                  const Shape& shape) {
  const auto* from = static_cast<const unsigned char*>(elements.data);
  auto* to = static_cast<VARIANT*>(cells);
  ForEachCell(elements.size, shape, [&](std::size_t cell, std::size_t i) {
    to[cell].vt = type;
    std::memcpy(&to[cell].llVal, from + i * width, width);
  });
}

// An array of count elements, each of so many bytes, that fill(cells, shape) fills.
template <class Fill>
void ReturnFilled(member::Arguments& args, VARTYPE type, std::size_t width, std::size_t count,
                  const ArrayLayout& layout, Fill&& fill) {
  if (layout.columns < 1) member::Fail(status::kBadValue);
  VARIANT& result = ResultVariant(args);
  if (count == 0) {
    if (FAILED(VariantClear(&result))) member::Fail(status::kFailed);
    return;
  }
  const auto columns = static_cast<std::size_t>(layout.columns);
  const Shape shape{(count + columns - 1) / columns, columns};
  const VARTYPE array_type = layout.variants ? VARTYPE{VT_VARIANT} : type;
  OwnedArray array =
      CreateArray(array_type, layout.variants ? sizeof(VARIANT) : width, shape, layout);
  fill(LockedArray(array.get()).Get(), shape);
  if (FAILED(VariantClear(&result))) member::Fail(status::kFailed);
  result.vt = static_cast<VARTYPE>(VT_ARRAY | array_type);
  result.parray = array.release();
}

}  // namespace

void ReturnAsArray(member::Arguments& args, const ConstElementSpan& elements,
                   const ArrayLayout& layout) {
  const VARTYPE type = GetVariantTypeFromSimpleType(elements.type_id);
  if (type == VT_EMPTY) member::Fail(status::kUnsupported);
  const std::size_t width = PLTTypeToSizeOf(elements.type_id);
  ReturnFilled(args, type, width, elements.size, layout, [&](void* cells, const Shape& shape) {
    if (layout.variants) {
      FillVariants(cells, elements, type, width, shape);
    } else {
      FillNumbers(cells, elements, width, shape);
    }
  });
}

void ReturnValuesAsArray(member::Arguments& args, VARTYPE type, std::size_t count,
                         const ArrayLayout& layout,
                         const std::function<VARIANT(std::size_t)>& make) {
  ReturnFilled(args, type, sizeof(void*), count, layout, [&](void* cells, const Shape& shape) {
    ForEachCell(count, shape, [&](std::size_t cell, std::size_t i) {
      const VARIANT value = make(i);
      if (layout.variants) {
        static_cast<VARIANT*>(cells)[cell] = value;
      } else {
        std::memcpy(static_cast<void**>(cells) + cell, &value.llVal, sizeof(void*));
      }
    });
  });
}

}  // namespace vela

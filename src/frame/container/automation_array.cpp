#include "frame/container/automation_array.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "frame/container/locked_array.h"
#include "frame/interface/host_services.h"

namespace vela {
namespace {

struct Shape {
  std::size_t rows;
  std::size_t columns;
};

CComVariant CreateArray(VARTYPE type, std::size_t element_size, const Shape& shape,
                        const ArrayLayout& layout) {
  SAFEARRAYBOUND bounds[2] = {};
  bounds[0].cElements = static_cast<ULONG>(shape.rows);
  bounds[0].lLbound = layout.two_dimensional ? 0 : layout.lower_bound;
  bounds[1].cElements = static_cast<ULONG>(shape.columns);
  CComVariant array;
  array.parray = vela::CreateArray(type, std::span(bounds, layout.two_dimensional ? 2 : 1));
  if (array.parray == nullptr) member::Fail(status::kArrayFailed);
  array.vt = static_cast<VARTYPE>(VT_ARRAY | type);
  if (SafeArrayGetElemsize(array.parray) != element_size) member::Fail(status::kFailed);
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
CComVariant MakeFilled(VARTYPE type, std::size_t width, std::size_t count,
                       const ArrayLayout& layout, Fill&& fill) {
  if (layout.columns < 1) member::Fail(status::kBadValue);
  const auto columns = static_cast<std::size_t>(layout.columns);
  const Shape shape{count / columns + (count % columns != 0), columns};
  CComVariant array = layout.variants ? CreateArray(VT_VARIANT, sizeof(VARIANT), shape, layout)
                                      : CreateArray(type, width, shape, layout);
  fill(LockedArray(array.parray).Get(), shape);
  return array;
}

}  // namespace

// The sizes are checked here because not every system's array functions do.
SAFEARRAY* CreateArray(VARTYPE type, std::span<const SAFEARRAYBOUND> bounds) {
  using Limits = std::numeric_limits<std::int32_t>;
  constexpr std::uint64_t kMostBytes = std::numeric_limits<std::uint32_t>::max();
  SAFEARRAY* const none = SafeArrayCreateVector(type, 0, 0);
  if (none == nullptr) return nullptr;
  std::uint64_t bytes = SafeArrayGetElemsize(none);
  SafeArrayDestroy(none);
  for (const SAFEARRAYBOUND& bound : bounds) {
    const std::int64_t upper = std::int64_t{bound.lLbound} + bound.cElements - 1;
    if (upper < Limits::min() || upper > Limits::max()) return nullptr;
    if (bound.cElements != 0 && bytes > kMostBytes / bound.cElements) return nullptr;
    bytes *= bound.cElements;
  }
  return SafeArrayCreate(type, static_cast<UINT>(bounds.size()),
                         const_cast<SAFEARRAYBOUND*>(bounds.data()));
}

CComVariant MakeArray(const ConstElementSpan& elements, const ArrayLayout& layout) {
  const VARTYPE type = GetVariantTypeFromSimpleType(elements.type_id);
  if (type == VT_EMPTY) member::Fail(status::kUnsupported);
  const std::size_t width = PLTTypeToSizeOf(elements.type_id);
  return MakeFilled(type, width, elements.size, layout, [&](void* cells, const Shape& shape) {
    if (layout.variants) {
      FillVariants(cells, elements, type, width, shape);
    } else {
      FillNumbers(cells, elements, width, shape);
    }
  });
}

CComVariant MakeArray(VARTYPE type, std::size_t count, const ArrayLayout& layout,
                      const std::function<VARIANT(std::size_t)>& make) {
  return MakeFilled(type, sizeof(void*), count, layout, [&](void* cells, const Shape& shape) {
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

void ReturnVariant(member::Arguments& args, CComVariant&& value) {
  CScriptVelaObject* object = args.Call().GetReturnObject(0);
  VARIANT* result = object == nullptr ? nullptr : object->GetVariantAddress(nullptr);
  if (result == nullptr || FAILED(VariantClear(result))) member::Fail(status::kFailed);
  *result = value.Detach();
}

}  // namespace vela

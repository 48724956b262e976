// The numbers of an automation array.
#pragma once

#include <functional>
#include <optional>

#include "frame/container/layer.h"
#include "platform/automation.h"

namespace vela {

// Elements row by row. An array of one dimension is one row.
struct ArrayNumbers {
  LayerShape shape;
  ElementMemory elements;
};

// The elements of the array in a variant, in their own type where it is an element type; as
// doubles otherwise, what is no number (empty, an object, an unreadable text) as the missing value.
// Nothing for a variant without an array, and for one of more than two dimensions. Throws
// std::bad_alloc.
std::optional<ArrayNumbers> ReadArray(const VARIANT& value);

// The shape of an array of one dimension, which is one row, or of two.
std::optional<LayerShape> ShapeOfArray(SAFEARRAY* array);
// Calls store(i, cell) for every element, row by row, with a variant that shows it and is not to be
// cleared.
void ForEachValue(const VARIANT& array,
                  const std::function<void(std::size_t, const VARIANT&)>& store);

}  // namespace vela

#pragma once

#include <cstdint>

#include "tesselc/run/carrier.h"
#include "tesselc/run/elements.h"
#include "tesselc/source.h"

namespace tesselc {

// What a range loop walks over: the elements of a container, the cells of a matrix row by row, or
// the objects of an array.
enum class Walk { kElements, kCells, kObjects };

// for (T x : container). Before each round the frame's int64 at `position` is the index of the
// element; of a cell, the row, and the int64 at `column` its column. A loop by reference over
// scalars binds `element` to the ScalarReference at `reference`; any other runs `load`, and after a
// round that went on `store` (null for a loop by value), which puts the variable back. The object
// that is walked is found once and lies as an ObjectReference at `object`; its size is looked up
// before each round, so the body may change it.
struct RangeLoop {
  NodePtr container;
  std::uint32_t object = 0;
  std::uint32_t position = 0;
  std::uint32_t column = 0;
  std::uint32_t reference = 0;
  std::unique_ptr<Referable> element;  // null for a loop with a variable of its own
  NodePtr load, store, body;
  Walk walk = Walk::kElements;
  SourceRange where;
};
NodePtr MakeRangeLoop(RangeLoop loop);

}  // namespace tesselc

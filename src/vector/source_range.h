// The range of another vector's elements that a vector was made from.
#pragma once

#include <cstdint>

class CScriptVelaObject;

// Points at its source without keeping it alive: the creation id tells a new object at the same
// address from the one that was meant.
struct VectorSourceDataRangeHolder {
  CScriptVelaObject* source = nullptr;
  std::uint64_t source_creation_id = 0;
  std::int32_t row = 0;
  std::int32_t lower = 0;
  std::int32_t upper = -1;

  // Whether the source still lives and has the elements lower .. upper of that row.
  bool IsValid() const;
};

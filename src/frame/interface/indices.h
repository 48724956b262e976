// The index record that a call frame carries: which object of an array of objects, and which
// element inside it, an operation addresses.
#pragma once

#include <cstdint>

#include "frame/interface/export.h"

class CScriptVelaObject;

struct MSOINDICES {
  // Low three bits: 0 no object index (the whole object, or its first element, row or layer),
  // 1 the object index below applies; anything else addresses nothing. Bits 3 to 5: how many
  // element indices follow (0 none, 1 vector element, 2 matrix row and column).
  std::int32_t kind = 0;
  // Element of an array of scalars, strings or pictures; row of a vector; layer of a matrix.
  std::int32_t index = 0;
  // Element of the addressed row; row of the addressed layer.
  std::int32_t element = 0;
  // Column of the addressed layer.
  std::int32_t column = 0;

  static constexpr std::int32_t kObjectKindMask = 7;
  static constexpr std::int32_t kWhole = 0;
  static constexpr std::int32_t kOneObject = 1;
  static constexpr int kElementCountShift = 3;

  constexpr int ObjectKind() const { return kind & kObjectKindMask; }
  constexpr int ElementCount() const { return (kind >> kElementCountShift) & 7; }

  bool operator==(const MSOINDICES&) const = default;

  // The object that the record addresses: 0 without an object index, -1 for an invalid kind.
  constexpr std::int32_t ObjectIndex() const {
    return ObjectKind() == kWhole ? 0 : ObjectKind() == kOneObject ? index : -1;
  }

  static constexpr MSOINDICES Object(std::int32_t i) { return {kOneObject, i, 0, 0}; }
  static constexpr MSOINDICES Element(std::int32_t e) { return {1 << kElementCountShift, 0, e, 0}; }
  constexpr MSOINDICES WithElement(std::int32_t e) const {
    return {ObjectKind() | (1 << kElementCountShift), index, e, 0};
  }
  constexpr MSOINDICES WithCell(std::int32_t row, std::int32_t col) const {
    return {ObjectKind() | (2 << kElementCountShift), index, row, col};
  }
};

static_assert(sizeof(MSOINDICES) == 16);

// Adds an index to a record that has room for one: the object index when there is none yet, else
// the next element index. Returns 0, or 1 when the record is full.
VELAHOST_API int Append_Indices(MSOINDICES& indices, std::int32_t index);

// Walks the elements of the row that a record addresses.
class VELAHOST_API CMSOINDICESVectorIterator {
 public:
  // Borrows the record, which must outlive the iterator; null stands for a whole-object record.
  explicit CMSOINDICESVectorIterator(const MSOINDICES* indices);
  // Addresses element i of the same row.
  void SetIndex(std::int32_t i);
  const MSOINDICES& Get() const { return current_; }

 private:
  MSOINDICES current_;
};

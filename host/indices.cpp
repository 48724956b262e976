#include "frame/interface/indices.h"

int Append_Indices(MSOINDICES& indices, std::int32_t index) {
  if (indices.ObjectKind() > MSOINDICES::kOneObject) return 1;
  if (indices.ObjectKind() == MSOINDICES::kWhole) {
    indices.kind |= MSOINDICES::kOneObject;
    indices.index = index;
    return 0;
  }
  switch (indices.ElementCount()) {
    case 0:
      indices = indices.WithElement(index);
      return 0;
    case 1:
      indices = indices.WithCell(indices.element, index);
      return 0;
    default:
      return 1;
  }
}

CMSOINDICESVectorIterator::CMSOINDICESVectorIterator(const MSOINDICES* indices)
    : current_(indices ? *indices : MSOINDICES{}) {}

void CMSOINDICESVectorIterator::SetIndex(std::int32_t i) { current_ = current_.WithElement(i); }

#include "vector/source_range.h"

#include "vector/vector_base.h"

bool VectorSourceDataRangeHolder::IsValid() const {
  if (!CScriptVelaObject::IsInMap(source) || source->GetCreationID() != source_creation_id) {
    return false;
  }
  const auto* vector = dynamic_cast<const TCAllVectorNonTemplBase*>(source);
  return vector != nullptr && row >= 0 && row < vector->LayerCount() && lower >= 0 &&
         lower <= upper && static_cast<std::size_t>(upper) < vector->RowSize(row);
}

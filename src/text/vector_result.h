// Vectors that the text members read and fill.
#pragma once

#include <span>

#include "vector/typed_vector.h"

namespace vela::text {

// Whether the elements are of type T.
template <class T>
bool IsVectorOf(const VectorArgument& argument) {
  return dynamic_cast<const TCAllVectorsBaseBase<T>*>(argument.vector) != nullptr;
}

// The row becomes these elements; it must be of type T. Fails with the status of the resize.
template <class T>
void StoreElements(const VectorArgument& target, std::span<const T> elements) {
  auto& vector = dynamic_cast<TCAllVectorsBaseBase<T>&>(*target.vector);
  member::Check(vector.RawResize(target.row, static_cast<std::int64_t>(elements.size())));
  RowAccess<T> row(vector, target.row);
  std::copy(elements.begin(), elements.end(), row.Elements().begin());
  member::Check(row.Commit());
}

// The row becomes these numbers, converted to its element type; it must be numeric.
inline void StoreNumbers(const VectorArgument& target, std::span<const double> numbers) {
  WithElementType(target.vector->GetInternalDataTypeID(), [&]<class T>() {
    if constexpr (std::is_same_v<T, double>) return StoreElements<T>(target, numbers);
    std::vector<T> elements(numbers.size());
    ConvertRun<T>(ElementRun(numbers), elements);
    StoreElements<T>(target, elements);
  });
}

}  // namespace vela::text

// The row as an automation array. Complex and point elements have no automation type: status 12291.
#pragma once

#include "vector/automation_array.h"
#include "vector/typed_vector.h"

template <class T>
template <class ReadLayout>
int TCAllVectorsBase<T>::ReturnArray(CTCall* call, const vela::member::Arity& arity,
                                     ReadLayout&& read) {
  using namespace vela::member;
  if constexpr (!vela::SimpleElement<T>) {
    return status::kUnsupported;
  } else {
    return Run(call, arity, [&](Arguments& args) {
      const RowAccess<T> access(*this, this->Row(args));
      vela::ReturnAsArray(args, vela::ElementRun(access.Elements()), read(args));
    });
  }
}

// GetAs1DArray(int lowerBound = 0): an array of the elements' automation type.
template <class T>
int TCAllVectorsBase<T>::GetAs1DArray(CTCall* call) {
  using namespace vela::member;
  return ReturnArray(call, Between(0, 1), [](Arguments& args) {
    vela::ArrayLayout layout;
    if (args.Count() == 1) layout.lower_bound = args.Int(0);
    return layout;
  });
}

template <class T>
int TCAllVectorsBase<T>::GetDataAsOneDimensionalArray(CTCall* call) {
  return GetAs1DArray(call);
}

// GetDataAsOneDimensionalArrayOfVariants(int lowerBound = 0): the same with each element in a
// variant of its own.
template <class T>
int TCAllVectorsBase<T>::GetDataAsOneDimensionalArrayOfVariants(CTCall* call) {
  using namespace vela::member;
  return ReturnArray(call, Between(0, 1), [](Arguments& args) {
    vela::ArrayLayout layout;
    layout.variants = true;
    if (args.Count() == 1) layout.lower_bound = args.Int(0);
    return layout;
  });
}

// GetAs2DArray(int columns, BOOL variants): an array of two dimensions that the elements fill row
// by row. Status 8 for a column count below 1.
template <class T>
int TCAllVectorsBase<T>::GetAs2DArray(CTCall* call) {
  using namespace vela::member;
  return ReturnArray(call, Exactly(2), [](Arguments& args) {
    vela::ArrayLayout layout;
    layout.two_dimensional = true;
    layout.columns = args.Int(0);
    layout.variants = args.Int(1) != 0;
    return layout;
  });
}

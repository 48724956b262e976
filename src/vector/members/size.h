// Members about size and structure.
#pragma once

#include "vector/typed_vector.h"

template <class T>
int TCAllVectorsBase<T>::Append(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    this->RefuseOneRowOfMany(args, status::kNotOnOneRow);
    const int row = this->Row(args);
    const vela::VectorArgument source = vela::RequiredVector(args, 0);
    tagMSOOBJVECT operand(source.vector, source.vector->GetTypeID(),
                          MSOINDICES::Object(source.row));
    const MSOINDICES at = MSOINDICES::Object(row);
    Check(this->Operate2(&at, operation::kAssign, operand, operation::kAppend));
    args.Return(1);
  });
}

template <class T>
int TCAllVectorsBase<T>::GetUpperBound(CTCall* call) {
  using namespace vela::member;
  return Run(call, NoArguments(), [&](Arguments& args) {
    args.Return(static_cast<int>(this->RowSize(this->Row(args))) - 1);
  });
}

template <class T>
int TCAllVectorsBase<T>::GetLowerBound(CTCall* call) {
  using namespace vela::member;
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(this->RowLowerBound(this->Row(args))); });
}

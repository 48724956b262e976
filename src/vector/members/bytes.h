// Elements as raw bytes.
#pragma once

#include <cstring>

#include "vector/typed_vector.h"

namespace vela {

// A vector of 8-bit elements; anything else is status 3.
inline VectorArgument ByteVector(member::Arguments& args, unsigned arg) {
  const VectorArgument bytes = RequiredVector(args, arg);
  const unsigned type_id = bytes.vector->GetInternalDataTypeID();
  if (type_id != kTypeUnsignedChar && type_id != kTypeChar) member::Fail(status::kBadArguments);
  return bytes;
}

}  // namespace vela

// GetBytes(vector<byte>& bytes): bytes becomes the elements' memory; 1. Status 13702 for elements
// that are not one buffer.
template <class T>
int TCAllVectorsBase<T>::GetBytes(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = this->Row(args);
    if (!this->IsContiguous(row)) Fail(status::kNotContiguous);
    const vela::VectorArgument bytes = vela::ByteVector(args, 0);
    if (!bytes.IsRow(this, row)) {
      const std::span<const T> elements = this->Elements(row);
      Check(bytes.vector->RawResize(bytes.row, static_cast<std::int64_t>(elements.size_bytes())));
      vela::ElementRun memory;
      memory.type_id = bytes.vector->GetInternalDataTypeID();
      memory.data = elements.data();
      memory.size = elements.size_bytes();
      Check(bytes.vector->StoreRun(bytes.row, 0, memory));
    }
    args.Return(1);
  });
}

// SetBytes(vector<byte> bytes): the row becomes the whole elements that the bytes hold; 1. Status
// 13702 when either is not one buffer.
template <class T>
int TCAllVectorsBase<T>::SetBytes(CTCall* call) {
  using namespace vela::member;
  return Run(call, Exactly(1), [&](Arguments& args) {
    const int row = this->Row(args);
    if (!this->IsContiguous(row)) Fail(status::kNotContiguous);
    const vela::VectorArgument bytes = vela::ByteVector(args, 0);
    if (!bytes.IsRow(this, row)) {
      if (bytes.vector->ContiguousRun(bytes.row).type_id == kTypeNone) Fail(status::kNotContiguous);
      const std::size_t count = bytes.Size() / sizeof(T);
      Check(this->RawResize(row, static_cast<std::int64_t>(count)));
      const vela::ElementRun memory = bytes.vector->ContiguousRun(bytes.row);
      if (count > 0) {
        std::memcpy(static_cast<void*>(this->Elements(row).data()), memory.data, count * sizeof(T));
      }
      this->SetModify(1);
    }
    args.Return(1);
  });
}

// Elements as raw bytes.
#include <cstring>

#include "frame/container/container_arguments.h"
#include "vector/vector_base.h"

using vela::ElementSpan;
using vela::Layer;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Run;

namespace {

// The row's elements as one buffer: status 13702 where they are not.
ElementSpan Buffer(const Layer& layer) {
  const ElementSpan elements = layer.Buffer();
  if (!elements) Fail(status::kNotContiguous);
  return elements;
}

// A vector of 8-bit elements; anything else is status 3.
Layer ByteVector(Arguments& args, unsigned arg) {
  const Layer bytes = vela::RequiredVector(args, arg);
  const unsigned type_id = bytes.TypeId();
  if (type_id != kTypeUnsignedChar && type_id != kTypeChar) Fail(status::kBadArguments);
  return bytes;
}

}  // namespace

// GetBytes(vector<byte>& bytes): bytes becomes the elements' memory; 1. Status 13702 for elements
// that are not one buffer.
int TCAllVectorNonTemplBase::GetBytes(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = AddressedNumbers(args);
    Buffer(row);
    const Layer bytes = ByteVector(args, 0);
    if (bytes != row) {
      const std::span<const std::byte> memory = Buffer(row).Bytes();
      vela::StoreResult(bytes, {bytes.TypeId(), memory.data(), memory.size()});
    }
    args.Return(1);
  });
}

// SetBytes(vector<byte> bytes): the row becomes the whole elements that the bytes hold; 1. Status
// 13702 when either is not one buffer.
int TCAllVectorNonTemplBase::SetBytes(CTCall* call) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = AddressedNumbers(args);
    Buffer(row);
    const Layer bytes = ByteVector(args, 0);
    if (bytes != row) {
      Buffer(bytes);
      row.Resize(bytes.Size() / vela::ElementWidth(row.TypeId()), vela::Contents::kDrop);
      const std::span<std::byte> memory = Buffer(row).Bytes();
      if (!memory.empty()) std::memcpy(memory.data(), Buffer(bytes).data, memory.size());
      row.AnnounceChange();
    }
    args.Return(1);
  });
}

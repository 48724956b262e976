// Which object, and what of it.
#include "frame/interface/object_argument.h"

#include <utility>

#include "frame/interface/script_object.h"

namespace {

MSOINDICES MakeIndices(std::int32_t object_index, std::int32_t element, std::int32_t column) {
  constexpr std::int32_t kNone = tagMSOOBJVECT::kNoIndex;
  const MSOINDICES row = object_index == kNone ? MSOINDICES{} : MSOINDICES::Object(object_index);
  if (element == kNone) return row;
  return column == kNone ? row.WithElement(element) : row.WithCell(element, column);
}

}  // namespace

tagMSOOBJVECT::tagMSOOBJVECT(CScriptVelaObject* the_object, std::uint32_t the_type_word,
                             std::int32_t object_index, std::int32_t element, std::int32_t column,
                             std::uint32_t the_flags)
    : tagMSOOBJVECT(the_object, the_type_word, MakeIndices(object_index, element, column),
                    the_flags) {}

tagMSOOBJVECT tagMSOOBJVECT::Plain(const OneTCcomplex& value, std::uint32_t type_id) {
  tagMSOOBJVECT operand(nullptr, type_id, MSOINDICES{});
  operand.plain = value;
  return operand;
}

tagMSOOBJVECT tagMSOOBJVECT::Plain(std::int64_t value) {
  tagMSOOBJVECT operand = Plain(static_cast<double>(value), kTypeInt64);
  operand.plain_bits = static_cast<std::uint64_t>(value);
  return operand;
}

tagMSOOBJVECT tagMSOOBJVECT::Plain(std::uint64_t value) {
  tagMSOOBJVECT operand = Plain(static_cast<double>(value), kTypeUnsignedInt64);
  operand.plain_bits = value;
  return operand;
}

void tagMSOOBJVECT::Copy(const tagMSOOBJVECT& other) {
  *this = other;
  lent_buffer = nullptr;
}

void tagMSOOBJVECT::Reset() { *this = tagMSOOBJVECT(); }

void* MSGetBuffer(tagMSOOBJVECT& argument) {
  if (!argument.object) return nullptr;
  void* buffer = nullptr;
  if (argument.object->GetBufferMSO(&argument.indices, &buffer) != status::kOk) return nullptr;
  return argument.lent_buffer = buffer;
}

void MSReleaseBuffer(tagMSOOBJVECT& argument) {
  void* const buffer = std::exchange(argument.lent_buffer, nullptr);
  if (argument.object && buffer) argument.object->ReleaseBufferMSO(&argument.indices, buffer);
}

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

// Element access and host-facing operations of vectors.
#include <algorithm>
#include <cstring>

#include "frame/element_value.h"
#include "frame/library_state.h"
#include "vector/vector_base.h"

using vela::ConstElementSpan;
using vela::ElementSpan;

namespace {

// What stands behind a copy that is lent, to show a write beyond its end.
constexpr std::ptrdiff_t kGuardBytes = 2;
constexpr std::byte kGuard{0xCC};

}  // namespace

int TCAllVectorNonTemplBase::LocateRow(const MSOINDICES* at, int& row) const {
  row = GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  return row < LayerCount() ? status::kOk : status::kOutOfRange;
}

int TCAllVectorNonTemplBase::Locate(const MSOINDICES* at, int& row, std::size_t& index) const {
  if (const int error = LocateRow(at, row); error != status::kOk) return error;
  const int element = at == nullptr || at->ElementCount() == 0 ? 0 : at->element;
  if (element < 0) return status::kNegativeElement;
  index = static_cast<std::size_t>(element);
  return index < RowSize(row) ? status::kOk : status::kOutOfRange;
}

template <class U>
int TCAllVectorNonTemplBase::Read(const MSOINDICES* at, U& value) {
  int row;
  std::size_t index;
  if (const int error = Locate(at, row, index); error != status::kOk) return error;
  int result = status::kUnsupported;
  vela::VisitElementType(GetInternalDataTypeID(), [&]<class T>() {
    T element;
    if (const ElementSpan buffer = BufferOf(row)) {
      element = buffer.As<T>()[index];
      result = status::kOk;
    } else {
      result = ReadElements(row, index, ElementSpan(std::span(&element, 1)));
      if (result != status::kOk) return;
    }
    if constexpr (std::is_same_v<U, CStringUTF8>) {
      value = vela::ValueText(element);
    } else {
      value = vela::ConvertValue<U>(element);
    }
  });
  return result;
}

template <class U>
int TCAllVectorNonTemplBase::Write(const MSOINDICES* at, const U& value) {
  int row;
  std::size_t index;
  if (const int error = Locate(at, row, index); error != status::kOk) return error;
  return StoreElements(row, index, ConstElementSpan(std::span(&value, 1)));
}

template class vela::ValueAccess<TCAllVectorNonTemplBase, TCAllTensorsBase>;

int TCAllVectorNonTemplBase::IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const {
  auto* vector = dynamic_cast<TCAllVectorNonTemplBase*>(const_cast<CScriptVelaObject*>(other));
  auto* self = const_cast<TCAllVectorNonTemplBase*>(this);
  if (vector == nullptr || LayerCount() == 0 || vector->LayerCount() == 0) return 0;
  const ElementSpan elements = self->BufferOf(0);
  return elements && vector->BufferOf(0).type_id == elements.type_id;
}

void* TCAllVectorNonTemplBase::GetArrayElement(const MSOINDICES* at, int index) {
  int row;
  if (LocateRow(at, row) != status::kOk) return nullptr;
  const ElementSpan elements = BufferOf(row);
  const auto place = static_cast<std::size_t>(index);  // below 0: beyond every size
  return place < elements.size ? elements.Part(place, 1).data : nullptr;
}

int TCAllVectorNonTemplBase::GetUpperBound(const MSOINDICES* at, int& upper) {
  int row;
  if (const int error = LocateRow(at, row); error != status::kOk) return error;
  upper = static_cast<int>(RowSize(row)) - 1;
  return status::kOk;
}

int TCAllVectorNonTemplBase::IsValidElement(const MSOINDICES* at) {
  int row;
  std::size_t index;
  return Locate(at, row, index) == status::kOk;
}

int TCAllVectorNonTemplBase::SetVectorDimension(const MSOINDICES* at, int size) {
  int row;
  if (const int error = LocateRow(at, row); error != status::kOk) return error;
  return RawResize(row, size);
}

unsigned TCAllVectorNonTemplBase::GetTypeIDCheckIndex(const MSOINDICES* at) {
  if (LayerCount() == 0) return GetTypeID();
  if (at != nullptr && at->ElementCount() != 0) {
    return IsValidElement(at) ? GetInternalDataTypeID() : unsigned{kTypeNone};
  }
  int row;
  return LocateRow(at, row) == status::kOk ? GetTypeID() : unsigned{kTypeNone};
}

int TCAllVectorNonTemplBase::GetString(CStringUTF8& text) {
  const int size = LayerCount() > 0 ? static_cast<int>(RowSize(0)) : 0;
  const bool has_type = vela::VisitElementType(GetInternalDataTypeID(), [&]<class T>() {
    if constexpr (vela::PointElement<T>) {
      text.Format("{Vector <%s>}", vela::kElement<T>.display_name);
    } else {
      text.Format("%s(%d)", vela::kElement<T>.name, size);
    }
  });
  if (!has_type) text = "vectorbase";
  return 1;
}

int TCAllVectorNonTemplBase::GetString(const MSOINDICES* at, CStringUTF8& text) {
  if (at != nullptr && at->ElementCount() != 0) return Read(at, text);
  GetString(text);
  return status::kOk;
}

int TCAllVectorNonTemplBase::SetString(const MSOINDICES* at, const char* text) {
  switch (GetInternalDataTypeID()) {
    case kTypeInt64:
      return Write(at, vela::ValueOfText<std::int64_t>(text));
    case kTypeUnsignedInt64:
      return Write(at, vela::ValueOfText<std::uint64_t>(text));
    default:
      return Write(at, VELAObj::ParleyStr2double(text));
  }
}

int TCAllVectorNonTemplBase::GetDisplayElement(CStringUTF8& text, int index) {
  const MSOINDICES at = index == -1 ? MSOINDICES{} : MSOINDICES::Element(index);
  return GetDisplayElementEx(text, &at);
}

int TCAllVectorNonTemplBase::GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at) {
  const unsigned type_id = GetInternalDataTypeID();
  const bool is_wide_integer = type_id == kTypeInt64 || type_id == kTypeUnsignedInt64;
  int error;
  if (is_wide_integer && at != nullptr && at->ElementCount() != 0) {
    // A watch window shows every number as a double, while the text of an element keeps all digits.
    double value = 0;
    error = Read(at, value);
    if (error == status::kOk) text = vela::ValueText(value);
  } else {
    error = GetString(at, text);
  }
  if (error != status::kOk) text = "Error: Value cannot be determined";
  return status::kOk;
}

int TCAllVectorNonTemplBase::GetDisplaySize(int& rows, int& cols) {
  return GetDisplaySizeEx(nullptr, rows, cols);
}

int TCAllVectorNonTemplBase::GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols) {
  int upper = 0;
  if (const int error = GetUpperBound(at, upper); error != status::kOk) return error;
  rows = upper + 1;
  cols = 1;
  return status::kOk;
}

int TCAllVectorNonTemplBase::InitalizeFromMemory(const void* memory, int count) {
  if (LayerCount() == 0 || !vela::IsNumeric({this, 0})) return status::kUnsupported;
  if (count < 0 || (memory == nullptr && count > 0)) return status::kBadArguments;
  if (const int error = RawResize(0, count); error != status::kOk) return error;
  const ConstElementSpan elements(GetInternalDataTypeID(), memory, static_cast<std::size_t>(count));
  if (const int error = StoreElements(0, 0, elements); error != status::kOk) return error;
  AnnounceChange(0);
  return status::kOk;
}

int TCAllVectorNonTemplBase::GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at) {
  int row;
  std::size_t index;
  if (const int error = Locate(at, row, index); error != status::kOk) return error;
  const unsigned type_id = GetInternalDataTypeID();
  if (vela::ElementWidth(type_id) == 0) return status::kUnsupported;
  if (buffer == nullptr || size < vela::ElementWidth(type_id)) return status::kBadArguments;
  return ReadElements(row, index, ElementSpan(type_id, buffer, 1));
}

int TCAllVectorNonTemplBase::GetExternalData(void** address) {
  if (address == nullptr) return status::kBadArguments;
  if (LayerCount() == 0 || !vela::IsNumeric({this, 0})) return status::kUnsupported;
  const ElementSpan elements = BufferOf(0);
  if (!elements) return status::kNotContiguous;
  *address = elements.data;
  return status::kOk;
}

int TCAllVectorNonTemplBase::ResetValue() {
  for (int row = 0; row < LayerCount(); ++row) {
    if (const int error = RawResize(row, 0); error != status::kOk) return error;
  }
  return status::kOk;
}

unsigned TCAllVectorNonTemplBase::GetBufferSize(const MSOINDICES* at) {
  const std::size_t width = vela::ElementWidth(GetInternalDataTypeID());
  if (at != nullptr && at->ElementCount() != 0) return static_cast<unsigned>(width);
  int row;
  if (LocateRow(at, row) != status::kOk) return 0;
  return static_cast<unsigned>(std::min<std::size_t>(RowSize(row) * width, ~0u));
}

int TCAllVectorNonTemplBase::SetBufferSize(const MSOINDICES* at, unsigned bytes) {
  const std::size_t width = vela::ElementWidth(GetInternalDataTypeID());
  if (width == 0) return status::kUnsupported;
  return SetVectorDimension(at, static_cast<int>(bytes / width));
}

int TCAllVectorNonTemplBase::GetBufferMSO(const MSOINDICES* at, void** buffer) try {
  if (buffer == nullptr) return status::kBadArguments;
  int row;
  if (const int error = LocateRow(at, row); error != status::kOk) return error;
  if (at != nullptr && at->ElementCount() != 0) {
    *buffer = GetArrayElement(at, at->element);
    return *buffer == nullptr ? status::kOutOfRange : status::kOk;
  }
  if (!vela::IsNumeric({this, row})) return status::kUnsupported;
  const ElementSpan elements = BufferOf(row);
  if (!elements) return status::kNotContiguous;
  *buffer = vela::IsDebugMode() ? LendCopy(row, elements.type_id) : elements.data;
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

int TCAllVectorNonTemplBase::GetBufferMSOEx(const MSOINDICES* at, unsigned element_type,
                                            void** buffer) try {
  if (buffer == nullptr) return status::kBadArguments;
  if (element_type == GetInternalDataTypeID()) return GetBufferMSO(at, buffer);
  int row;
  if (const int error = LocateRow(at, row); error != status::kOk) return error;
  const bool is_whole = at == nullptr || at->ElementCount() == 0;
  if (!is_whole || vela::ElementWidth(element_type) == 0 || !vela::IsNumeric({this, row})) {
    return status::kUnsupported;
  }
  *buffer = LendCopy(row, element_type);
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

// Two guard bytes stand behind the elements.
void* TCAllVectorNonTemplBase::LendCopy(int row, unsigned type_id) {
  const std::size_t size = RowSize(row);
  const std::size_t bytes = size * vela::ElementWidth(type_id);
  LentBuffer lent{std::make_unique<std::byte[]>(bytes + kGuardBytes), row, type_id, size};
  vela::member::Check(ReadElements(row, 0, lent.Elements()));
  std::fill_n(lent.bytes.get() + bytes, kGuardBytes, kGuard);
  lent_.push_back(std::move(lent));
  return lent_.back().bytes.get();
}

int TCAllVectorNonTemplBase::ReleaseBufferMSO(const MSOINDICES*, void* buffer) {
  const auto lent = std::find_if(lent_.begin(), lent_.end(),
                                 [&](const LentBuffer& l) { return l.bytes.get() == buffer; });
  SetModify(1);
  if (lent == lent_.end()) return status::kOk;  // the row's own storage
  const std::span<std::byte> bytes = lent->Elements().Bytes();
  const std::byte* const guard = bytes.data() + bytes.size();
  if (vela::IsDebugMode() && std::count(guard, guard + kGuardBytes, kGuard) != kGuardBytes) {
    CStringUTF8 text;
    text.Format("An Object has written beyond the requested size of %d bytes\n",
                static_cast<int>(bytes.size()));
    VELAObj::ScriptMessage(text);
  }
  // The row may have been resized while it was lent.
  const std::size_t kept = std::min(RowSize(lent->row), lent->size);
  const int result = StoreElements(lent->row, 0, lent->Elements().Part(0, kept));
  lent_.erase(lent);
  return result;
}

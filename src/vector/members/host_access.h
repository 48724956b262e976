// Element access and host-facing operations of the typed vectors.
#pragma once

#include <algorithm>
#include <cstring>
#include <memory>

#include "vector/typed_vector.h"

template <class T>
int TCAllVectorsBaseBase<T>::Locate(const MSOINDICES* at, int& row, std::size_t& index) {
  row = this->GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  if (row >= this->RowCount()) return status::kOutOfRange;
  const int element = at == nullptr || at->ElementCount() == 0 ? 0 : at->element;
  if (element < 0) return status::kNegativeElement;
  index = static_cast<std::size_t>(element);
  return index < this->RowSize(row) ? status::kOk : status::kOutOfRange;
}

template <class T>
int TCAllVectorsBaseBase<T>::IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const {
  const auto* vector = dynamic_cast<const TCAllVectorsBaseBase*>(other);
  return vector != nullptr && this->RowCount() > 0 && vector->RowCount() > 0 && IsContiguous(0) &&
         vector->IsContiguous(0);
}

template <class T>
void* TCAllVectorsBaseBase<T>::GetArrayElement(const MSOINDICES* at, int index) {
  const MSOINDICES element = (at == nullptr ? MSOINDICES{} : *at).WithElement(index);
  int row;
  std::size_t place;
  if (Locate(&element, row, place) != status::kOk || !IsContiguous(row)) return nullptr;
  return &Elements(row)[place];
}

template <class T>
int TCAllVectorsBaseBase<T>::GetUpperBound(const MSOINDICES* at, int& upper) {
  const int row = this->GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  if (row >= this->RowCount()) return status::kOutOfRange;
  upper = static_cast<int>(this->RowSize(row)) - 1;
  return status::kOk;
}

template <class T>
int TCAllVectorsBaseBase<T>::IsValidElement(const MSOINDICES* at) {
  int row;
  std::size_t index;
  return Locate(at, row, index) == status::kOk;
}

template <class T>
int TCAllVectorsBaseBase<T>::SetVectorDimension(const MSOINDICES* at, int size) {
  const int row = this->GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  if (row >= this->RowCount()) return status::kOutOfRange;
  return this->RawResize(row, size);
}

template <class T>
unsigned TCAllVectorsBaseBase<T>::GetTypeIDCheckIndex(const MSOINDICES* at) {
  if (at != nullptr && at->ElementCount() != 0) {
    return IsValidElement(at) ? vela::kElement<T>.type_id : unsigned{kTypeNone};
  }
  const int row = this->GetVecArrayIndex(at);
  return row >= 0 && row < this->RowCount() ? this->GetTypeID() : unsigned{kTypeNone};
}

template <class T>
int TCAllVectorsBaseBase<T>::GetString(CStringUTF8& text) {
  if constexpr (vela::PointElement<T>) {
    text.Format("{Vector <%s>}", vela::kElement<T>.display_name);
  } else {
    const int size = this->RowCount() > 0 ? static_cast<int>(this->RowSize(0)) : 0;
    text.Format("%s(%d)", vela::kElement<T>.name, size);
  }
  return 1;
}

template <class T>
int TCAllVectorsBaseBase<T>::GetString(const MSOINDICES* at, CStringUTF8& text) {
  if (at != nullptr && at->ElementCount() != 0) return Read(at, text);
  GetString(text);
  return status::kOk;
}

template <class T>
int TCAllVectorsBaseBase<T>::SetString(const MSOINDICES* at, const char* text) {
  if constexpr (vela::SimpleElement<T>) {
    return Write(at, vela::ValueOfText<T>(text));
  } else {
    return Write(at, VELAObj::ParleyStr2double(text));
  }
}

template <class T>
int TCAllVectorsBaseBase<T>::GetDisplayElement(CStringUTF8& text, int index) {
  const MSOINDICES at = index == -1 ? MSOINDICES{} : MSOINDICES::Element(index);
  return GetDisplayElementEx(text, &at);
}

template <class T>
int TCAllVectorsBaseBase<T>::GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at) {
  int error;
  if constexpr (vela::IntegerElement<T> && sizeof(T) == 8) {
    // A watch window shows every number as a double, while the text of an element keeps all digits.
    const bool whole = at == nullptr || at->ElementCount() == 0;
    double value = 0;
    error = whole ? GetString(at, text) : Read(at, value);
    if (!whole && error == status::kOk) text = vela::ValueText(value);
  } else {
    error = GetString(at, text);
  }
  if (error != status::kOk) text = "Error: Value cannot be determined";
  return status::kOk;
}

template <class T>
int TCAllVectorsBaseBase<T>::GetDisplaySize(int& rows, int& cols) {
  return GetDisplaySizeEx(nullptr, rows, cols);
}

template <class T>
int TCAllVectorsBaseBase<T>::GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols) {
  int upper = 0;
  if (const int error = GetUpperBound(at, upper); error != status::kOk) return error;
  rows = upper + 1;
  cols = 1;
  return status::kOk;
}

template <class T>
int TCAllVectorsBaseBase<T>::InitalizeFromMemory(const void* memory, int count) {
  if (count < 0 || (memory == nullptr && count > 0)) return status::kBadArguments;
  if (const int error = this->RawResize(0, count); error != status::kOk) return error;
  RowAccess<T> row(*this, 0);
  if (count > 0) {
    std::memcpy(static_cast<void*>(row.Elements().data()), memory, row.Elements().size_bytes());
  }
  return row.Commit();
}

template <class T>
int TCAllVectorsBaseBase<T>::GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at) {
  int row;
  std::size_t index;
  if (const int error = Locate(at, row, index); error != status::kOk) return error;
  if (buffer == nullptr || size < sizeof(T)) return status::kBadArguments;
  const T element = ReadElement(row, index);
  std::memcpy(buffer, &element, sizeof(T));
  return status::kOk;
}

template <class T>
int TCAllVectorsBaseBase<T>::GetExternalData(void** address) {
  if (this->RowCount() == 0 || !IsContiguous(0)) return status::kNotContiguous;
  *address = Elements(0).data();
  return status::kOk;
}

template <class T>
int TCAllVectorsBaseBase<T>::ResetValue() {
  for (int row = 0; row < this->RowCount(); ++row) {
    if (const int error = this->RawResize(row, 0); error != status::kOk) return error;
  }
  return status::kOk;
}

template <class T>
unsigned TCAllVectorsBaseBase<T>::GetBufferSize(const MSOINDICES* at) {
  if (at != nullptr && at->ElementCount() != 0) return sizeof(T);
  const int row = this->GetVecArrayIndex(at);
  if (row < 0 || row >= this->RowCount()) return 0;
  const std::size_t bytes = this->RowSize(row) * sizeof(T);
  return static_cast<unsigned>(std::min<std::size_t>(bytes, ~0u));
}

template <class T>
int TCAllVectorsBaseBase<T>::SetBufferSize(const MSOINDICES* at, unsigned bytes) {
  return SetVectorDimension(at, static_cast<int>(bytes / sizeof(T)));
}

template <class T>
int TCAllVectorsBaseBase<T>::GetBufferMSO(const MSOINDICES* at, void** buffer) {
  const int row = this->GetVecArrayIndex(at);
  if (row < 0) return status::kUnresolved;
  if (row >= this->RowCount()) return status::kOutOfRange;
  if (at != nullptr && at->ElementCount() != 0) {
    *buffer = GetArrayElement(at, at->element);
    return *buffer == nullptr ? status::kOutOfRange : status::kOk;
  }
  if (!IsContiguous(row)) return status::kNotContiguous;
  const std::span<T> elements = Elements(row);
  *buffer = elements.data();
  if (!vela::IsDebugMode()) return status::kOk;
  try {
    LentBuffer lent{std::make_unique<unsigned char[]>(elements.size_bytes() + 2), row,
                    elements.size()};
    if (!elements.empty()) std::memcpy(lent.bytes.get(), elements.data(), elements.size_bytes());
    std::memset(lent.bytes.get() + elements.size_bytes(), 0xCC, 2);
    *buffer = lent.bytes.get();
    lent_.push_back(std::move(lent));
  } catch (const std::bad_alloc&) {
    return status::kCannotResize;
  }
  return status::kOk;
}

template <class T>
int TCAllVectorsBaseBase<T>::ReleaseBufferMSO(const MSOINDICES*, void* buffer) {
  const auto lent = std::find_if(lent_.begin(), lent_.end(),
                                 [&](const LentBuffer& l) { return l.bytes.get() == buffer; });
  this->SetModify(1);
  if (lent == lent_.end()) return status::kOk;  // the row's own storage
  const std::size_t bytes = lent->size * sizeof(T);
  const bool intact = lent->bytes[bytes] == 0xCC && lent->bytes[bytes + 1] == 0xCC;
  if (vela::IsDebugMode() && !intact) {
    CStringUTF8 text;
    text.Format("An Object has written beyond the requested size of %d bytes\n",
                static_cast<int>(bytes));
    VELAObj::ScriptMessage(text);
  }
  // The row may have been resized while it was lent.
  const std::span<T> elements = Elements(lent->row);
  const std::size_t kept = std::min(elements.size_bytes(), bytes);
  if (kept > 0) std::memcpy(static_cast<void*>(elements.data()), lent->bytes.get(), kept);
  lent_.erase(lent);
  return status::kOk;
}

template <class T>
vela::ElementRun TCAllVectorsBaseBase<T>::ContiguousRun(int row) {
  if (!IsContiguous(row)) return {};
  return vela::ElementRun(std::span<const T>(Elements(row)));
}

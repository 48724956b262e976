// Host-facing operations of vectors.
#include "vector/vector_base.h"

using vela::ConstElementSpan;
using vela::ElementSpan;

void* TCAllVectorNonTemplBase::GetArrayElement(const MSOINDICES* at, int index) {
  int row;
  if (LocateLayer(at, row) != status::kOk) return nullptr;
  const ElementSpan elements = BufferOf(row);
  const auto place = static_cast<std::size_t>(index);  // below 0: beyond every size
  return place < elements.size ? elements.Part(place, 1).data : nullptr;
}

int TCAllVectorNonTemplBase::GetUpperBound(const MSOINDICES* at, int& upper) {
  int row;
  if (const int error = LocateLayer(at, row); error != status::kOk) return error;
  upper = static_cast<int>(RowSize(row)) - 1;
  return status::kOk;
}

int TCAllVectorNonTemplBase::SetVectorDimension(const MSOINDICES* at, int size) {
  int row;
  if (const int error = LocateLayer(at, row); error != status::kOk) return error;
  return RawResize(row, size);
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

int TCAllVectorNonTemplBase::GetDisplayElement(CStringUTF8& text, int index) {
  const MSOINDICES at = index == -1 ? MSOINDICES{} : MSOINDICES::Element(index);
  return GetDisplayElementEx(text, &at);
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

int TCAllVectorNonTemplBase::SetBufferSize(const MSOINDICES* at, unsigned bytes) {
  const std::size_t width = vela::ElementWidth(GetInternalDataTypeID());
  if (width == 0) return status::kUnsupported;
  return SetVectorDimension(at, static_cast<int>(bytes / width));
}

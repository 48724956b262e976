// Element access and host-facing operations that every container shares.
#include <algorithm>
#include <cstring>

#include "frame/container/layer.h"
#include "frame/element_value.h"
#include "frame/library_state.h"

using vela::ConstElementSpan;
using vela::ElementSpan;

namespace {

// What stands behind a copy that is lent, to show a write beyond its end.
constexpr std::ptrdiff_t kGuardBytes = 2;
constexpr std::byte kGuard{0xCC};

}  // namespace

int TCAllTensorsBase::LocateLayer(const MSOINDICES* at, int& layer) const {
  layer = GetVecArrayIndex(at);
  if (layer < 0) return status::kUnresolved;
  return layer < LayerCount() ? status::kOk : StatusOfNoLayer(status::kOutOfRange);
}

int TCAllTensorsBase::IndexIn(int layer, const MSOINDICES* at, std::size_t& index) const {
  const int element = at == nullptr || at->ElementCount() == 0 ? 0 : at->element;
  if (element < 0) return status::kNegativeElement;
  index = static_cast<std::size_t>(element);
  return index < SizeOf(layer) ? status::kOk : status::kOutOfRange;
}

int TCAllTensorsBase::Locate(const MSOINDICES* at, int& layer, std::size_t& index) const {
  if (const int error = LocateLayer(at, layer); error != status::kOk) return error;
  return IndexIn(layer, at, index);
}

template <class U>
int TCAllTensorsBase::Read(const MSOINDICES* at, U& value) {
  int layer;
  std::size_t index;
  if (const int error = Locate(at, layer, index); error != status::kOk) return error;
  int result = status::kUnsupported;
  vela::VisitElementType(GetInternalDataTypeID(), [&]<class T>() {
    T element;
    if (const ElementSpan buffer = BufferOf(layer)) {
      element = buffer.As<T>()[index];
      result = status::kOk;
    } else {
      result = ReadElements(layer, index, ElementSpan(std::span(&element, 1)));
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
int TCAllTensorsBase::Write(const MSOINDICES* at, const U& value) {
  int layer;
  std::size_t index;
  if (const int error = Locate(at, layer, index); error != status::kOk) return error;
  return StoreElements(layer, index, ConstElementSpan(std::span(&value, 1)));
}

template class vela::ValueAccess<TCAllTensorsBase, TesselCObject>;

int TCAllTensorsBase::IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const {
  auto* container = dynamic_cast<TCAllTensorsBase*>(const_cast<CScriptVelaObject*>(other));
  auto* self = const_cast<TCAllTensorsBase*>(this);
  if (container == nullptr || LayerCount() == 0 || container->LayerCount() == 0) return 0;
  const ElementSpan elements = self->BufferOf(0);
  return elements && container->BufferOf(0).type_id == elements.type_id;
}

int TCAllTensorsBase::IsValidElement(const MSOINDICES* at) {
  int layer;
  std::size_t index;
  return Locate(at, layer, index) == status::kOk;
}

unsigned TCAllTensorsBase::GetTypeIDCheckIndex(const MSOINDICES* at) {
  if (LayerCount() == 0) return GetTypeID();
  if (at != nullptr && at->ElementCount() != 0) {
    return IsValidElement(at) ? GetInternalDataTypeID() : unsigned{kTypeNone};
  }
  int layer;
  return LocateLayer(at, layer) == status::kOk ? GetTypeID() : unsigned{kTypeNone};
}

int TCAllTensorsBase::GetString(const MSOINDICES* at, CStringUTF8& text) {
  if (at != nullptr && at->ElementCount() != 0) return Read(at, text);
  GetString(text);
  return status::kOk;
}

int TCAllTensorsBase::SetString(const MSOINDICES* at, const char* text) {
  switch (GetInternalDataTypeID()) {
    case kTypeInt64:
      return Write(at, vela::ValueOfText<std::int64_t>(text));
    case kTypeUnsignedInt64:
      return Write(at, vela::ValueOfText<std::uint64_t>(text));
    default:
      return Write(at, VELAObj::ParleyStr2double(text));
  }
}

int TCAllTensorsBase::GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at) {
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

int TCAllTensorsBase::GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at) {
  int layer;
  std::size_t index;
  if (const int error = Locate(at, layer, index); error != status::kOk) return error;
  const unsigned type_id = GetInternalDataTypeID();
  if (vela::ElementWidth(type_id) == 0) return status::kUnsupported;
  if (buffer == nullptr || size < vela::ElementWidth(type_id)) return status::kBadArguments;
  return ReadElements(layer, index, ElementSpan(type_id, buffer, 1));
}

int TCAllTensorsBase::GetExternalData(void** address) {
  if (address == nullptr) return status::kBadArguments;
  if (LayerCount() == 0 || !vela::IsNumeric({this, 0})) {
    return StatusOfNoLayer(status::kUnsupported);
  }
  const ElementSpan elements = BufferOf(0);
  if (!elements) return status::kNotContiguous;
  *address = elements.data;
  return status::kOk;
}

int TCAllTensorsBase::ResetValue() {
  for (int layer = 0; layer < LayerCount(); ++layer) {
    if (const int error = ResizeLayer(layer, {0, 0}, vela::Contents::kDrop); error != status::kOk)
      return error;
  }
  return status::kOk;
}

unsigned TCAllTensorsBase::GetBufferSize(const MSOINDICES* at) {
  const std::size_t width = vela::ElementWidth(GetInternalDataTypeID());
  if (at != nullptr && at->ElementCount() != 0) return static_cast<unsigned>(width);
  int layer;
  if (LocateLayer(at, layer) != status::kOk) return 0;
  return static_cast<unsigned>(std::min<std::size_t>(SizeOf(layer) * width, ~0u));
}

int TCAllTensorsBase::GetBufferMSO(const MSOINDICES* at, void** buffer) try {
  if (buffer == nullptr) return status::kBadArguments;
  int layer;
  if (at != nullptr && at->ElementCount() != 0) {
    std::size_t index;
    if (const int error = Locate(at, layer, index); error != status::kOk) return error;
    const ElementSpan elements = BufferOf(layer);
    *buffer = elements ? elements.Part(index, 1).data : GetArrayElement(at, at->element);
    return *buffer == nullptr ? status::kOutOfRange : status::kOk;
  }
  if (const int error = LocateLayer(at, layer); error != status::kOk) return error;
  if (!vela::IsNumeric({this, layer})) return status::kUnsupported;
  const ElementSpan elements = BufferOf(layer);
  if (!elements) return status::kNotContiguous;
  *buffer = vela::IsDebugMode() ? LendCopy(layer, elements.type_id) : elements.data;
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

int TCAllTensorsBase::GetBufferMSOEx(const MSOINDICES* at, unsigned element_type,
                                     void** buffer) try {
  if (buffer == nullptr) return status::kBadArguments;
  if (element_type == GetInternalDataTypeID()) return GetBufferMSO(at, buffer);
  int layer;
  if (const int error = LocateLayer(at, layer); error != status::kOk) return error;
  const bool is_whole = at == nullptr || at->ElementCount() == 0;
  if (!is_whole || vela::ElementWidth(element_type) == 0 || !vela::IsNumeric({this, layer})) {
    return status::kUnsupported;
  }
  *buffer = LendCopy(layer, element_type);
  return status::kOk;
} catch (...) {
  return vela::member::StatusOfException();
}

// Two guard bytes stand behind the elements.
void* TCAllTensorsBase::LendCopy(int layer, unsigned type_id) {
  const std::size_t size = SizeOf(layer);
  const std::size_t bytes = size * vela::ElementWidth(type_id);
  LentBuffer lent{std::make_unique<std::byte[]>(bytes + kGuardBytes), layer, type_id, size};
  vela::member::Check(ReadElements(layer, 0, lent.Elements()));
  std::fill_n(lent.bytes.get() + bytes, kGuardBytes, kGuard);
  lent_.push_back(std::move(lent));
  return lent_.back().bytes.get();
}

int TCAllTensorsBase::ReleaseBufferMSO(const MSOINDICES*, void* buffer) {
  const auto lent = std::find_if(lent_.begin(), lent_.end(),
                                 [&](const LentBuffer& l) { return l.bytes.get() == buffer; });
  SetModify(1);
  if (lent == lent_.end()) return status::kOk;  // the layer's own storage
  const std::span<std::byte> bytes = lent->Elements().Bytes();
  const std::byte* const guard = bytes.data() + bytes.size();
  if (vela::IsDebugMode() && std::count(guard, guard + kGuardBytes, kGuard) != kGuardBytes) {
    CStringUTF8 text;
    text.Format("An Object has written beyond the requested size of %d bytes\n",
                static_cast<int>(bytes.size()));
    VELAObj::ScriptMessage(text);
  }
  // The layer may have been resized while it was lent.
  const std::size_t kept = std::min(SizeOf(lent->layer), lent->size);
  const int result = StoreElements(lent->layer, 0, lent->Elements().Part(0, kept));
  lent_.erase(lent);
  return result;
}

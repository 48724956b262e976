#if !defined(_WIN32)

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <limits>
#include <optional>

#include "platform/automation.h"
#include "platform/automation/value_types.h"

namespace {

// The data follows the descriptor in the same allocation.
constexpr USHORT kDataInDescriptor = 0x2000;
constexpr USHORT kBorrowedData = FADF_AUTO | FADF_STATIC | FADF_EMBEDDED;
constexpr USHORT kElementFeatures =
    FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH | FADF_VARIANT | FADF_HAVEIID | FADF_HAVEVARTYPE;
constexpr ULONG kMaxLocks = 0xFFFF;

// What lies in front of the descriptor: the interface id, or the element type in the last word.
union Prefix {
  IID iid;
  ULONG words[4];
};
static_assert(sizeof(Prefix) == 16);

Prefix& PrefixOf(SAFEARRAY* array) { return reinterpret_cast<Prefix*>(array)[-1]; }

// 0 for a type that no array can hold.
ULONG ElementSize(VARTYPE type) {
  const auto* known = vela::platform::FindValueType(type);
  return known == nullptr ? 0 : known->bytes;
}

void SetElementType(SAFEARRAY* array, VARTYPE type) {
  array->cbElements = ElementSize(type);
  if (type == VT_UNKNOWN || type == VT_DISPATCH) {
    const bool dispatch = type == VT_DISPATCH;
    array->fFeatures |= FADF_HAVEIID | (dispatch ? FADF_DISPATCH : FADF_UNKNOWN);
    PrefixOf(array).iid = dispatch ? IID_IDispatch : IID_IUnknown;
    return;
  }
  array->fFeatures |= FADF_HAVEVARTYPE;
  if (type == VT_BSTR) array->fFeatures |= FADF_BSTR;
  if (type == VT_VARIANT) array->fFeatures |= FADF_VARIANT;
  PrefixOf(array).words[3] = type;
}

// Elements of count dimensions from the one kept first; nothing when the product is too large.
std::optional<std::uint64_t> CellCount(const SAFEARRAYBOUND* bounds, UINT count) {
  std::uint64_t product = 1;
  bool overflow = false;
  for (UINT i = 0; i < count; ++i) {
    if (bounds[i].cElements == 0) return 0;
    overflow |= __builtin_mul_overflow(product, bounds[i].cElements, &product);
  }
  if (overflow) return std::nullopt;
  return product;
}

// Bytes of the data, or nothing when they cannot be addressed.
std::optional<std::size_t> DataSize(const SAFEARRAY* array) {
  const auto cells = CellCount(array->rgsabound, array->cDims);
  std::uint64_t size = 0;
  if (!cells || __builtin_mul_overflow(*cells, std::uint64_t{array->cbElements}, &size) ||
      size > static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max())) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(size);
}

// Zeroed and never null for size 0.
void* AllocateZeroed(std::size_t size) { return std::calloc(std::max<std::size_t>(size, 1), 1); }

SAFEARRAY* AllocateDescriptor(UINT dimensions, std::size_t data_size) {
  if (dimensions < 1 || dimensions > 0xFFFF) return nullptr;
  const std::size_t head =
      sizeof(Prefix) + sizeof(SAFEARRAY) + (dimensions - 1) * sizeof(SAFEARRAYBOUND);
  const std::size_t aligned = (head + alignof(std::max_align_t) - 1) & -alignof(std::max_align_t);
  if (data_size > std::numeric_limits<std::ptrdiff_t>::max() - aligned) return nullptr;
  auto* memory = static_cast<char*>(std::calloc(aligned + data_size, 1));
  if (memory == nullptr) return nullptr;
  auto* array = reinterpret_cast<SAFEARRAY*>(memory + sizeof(Prefix));
  array->cDims = static_cast<USHORT>(dimensions);
  if (data_size > 0) array->pvData = memory + aligned;
  return array;
}

template <typename Element>
Element* At(void* data, std::size_t offset) {
  return reinterpret_cast<Element*>(static_cast<char*>(data) + offset);
}

bool OwnsElements(const SAFEARRAY* array) {
  return (array->fFeatures & (FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH | FADF_VARIANT)) != 0;
}

void ReleaseElement(const SAFEARRAY* array, void* element) {
  if (array->fFeatures & FADF_BSTR) {
    SysFreeString(*static_cast<BSTR*>(element));
  } else if (array->fFeatures & (FADF_UNKNOWN | FADF_DISPATCH)) {
    if (auto* object = *static_cast<IUnknown**>(element)) object->Release();
  } else if (array->fFeatures & FADF_VARIANT) {
    VariantClear(static_cast<VARIANT*>(element));
  }
}

void ReleaseElements(const SAFEARRAY* array, std::size_t from, std::size_t to) {
  if (!OwnsElements(array) || array->pvData == nullptr) return;
  for (std::size_t i = from; i < to; i += array->cbElements) {
    ReleaseElement(array, At<void>(array->pvData, i));
  }
}

// Duplicates one element into memory whose former content is ignored.
HRESULT DuplicateElement(const SAFEARRAY* array, const void* source, void* destination) {
  if (array->fFeatures & FADF_VARIANT) {
    static_cast<VARIANT*>(destination)->vt = VT_EMPTY;
    return VariantCopy(static_cast<VARIANT*>(destination), static_cast<const VARIANT*>(source));
  }
  if (array->fFeatures & FADF_BSTR) {
    const BSTR text = *static_cast<const BSTR*>(source);
    BSTR copy = nullptr;
    if (text != nullptr) {
      copy = SysAllocStringByteLen(reinterpret_cast<const char*>(text), SysStringByteLen(text));
      if (copy == nullptr) return E_OUTOFMEMORY;
    }
    *static_cast<BSTR*>(destination) = copy;
    return S_OK;
  }
  std::memmove(destination, source, array->cbElements);
  if (array->fFeatures & (FADF_UNKNOWN | FADF_DISPATCH)) {
    if (auto* object = *static_cast<IUnknown**>(destination)) object->AddRef();
  }
  return S_OK;
}

HRESULT DuplicateElements(SAFEARRAY* source, SAFEARRAY* destination, std::size_t size) {
  if (size == 0) return S_OK;
  if (!OwnsElements(source)) {
    std::memcpy(destination->pvData, source->pvData, size);
    return S_OK;
  }
  for (std::size_t i = 0; i < size; i += source->cbElements) {
    const HRESULT result =
        DuplicateElement(source, At<void>(source->pvData, i), At<void>(destination->pvData, i));
    if (FAILED(result)) return result;
  }
  return S_OK;
}

// Stores a duplicate of source and then releases what the element held, so that source may be part
// of that. A failure leaves the element as it was.
HRESULT ReplaceElement(const SAFEARRAY* array, const void* source, void* element) {
  if (source == nullptr) return E_INVALIDARG;
  if (source == element) return S_OK;
  if (!OwnsElements(array)) return DuplicateElement(array, source, element);
  alignas(VARIANT) char former[sizeof(VARIANT)];
  std::memcpy(former, element, array->cbElements);
  const HRESULT result = DuplicateElement(array, source, element);
  if (FAILED(result)) {
    std::memcpy(element, former, array->cbElements);
  } else {
    ReleaseElement(array, former);
  }
  return result;
}

}  // namespace

HRESULT SafeArrayAllocDescriptor(UINT dimensions, SAFEARRAY** out) {
  if (out == nullptr) return E_POINTER;
  if (dimensions < 1 || dimensions > 0xFFFF) return E_INVALIDARG;
  *out = AllocateDescriptor(dimensions, 0);
  return *out == nullptr ? E_OUTOFMEMORY : S_OK;
}

HRESULT SafeArrayAllocDescriptorEx(VARTYPE type, UINT dimensions, SAFEARRAY** out) {
  const HRESULT result = SafeArrayAllocDescriptor(dimensions, out);
  if (SUCCEEDED(result)) SetElementType(*out, type);
  return result;
}

HRESULT SafeArrayAllocData(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  const auto size = DataSize(array);
  if (!size) return E_OUTOFMEMORY;
  array->pvData = AllocateZeroed(*size);
  return array->pvData == nullptr ? E_OUTOFMEMORY : S_OK;
}

SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
  SAFEARRAY* array = nullptr;
  if (bounds == nullptr || ElementSize(type) == 0 ||
      FAILED(SafeArrayAllocDescriptorEx(type, dimensions, &array))) {
    return nullptr;
  }
  std::reverse_copy(bounds, bounds + dimensions, array->rgsabound);
  if (FAILED(SafeArrayAllocData(array))) {
    SafeArrayDestroyDescriptor(array);
    return nullptr;
  }
  return array;
}

SAFEARRAY* SafeArrayCreateVector(VARTYPE type, LONG lower_bound, ULONG elements) {
  const ULONG element_size = ElementSize(type);
  if (element_size == 0) return nullptr;
  // An empty vector has a byte, so that its data has an address.
  const std::size_t size = std::max<std::size_t>(std::size_t{element_size} * elements, 1);
  SAFEARRAY* array = AllocateDescriptor(1, size);
  if (array == nullptr) return nullptr;
  SetElementType(array, type);
  array->fFeatures |= kDataInDescriptor;
  array->rgsabound[0] = {elements, lower_bound};
  return array;
}

HRESULT SafeArrayDestroyDescriptor(SAFEARRAY* array) {
  if (array == nullptr) return S_OK;
  if (array->cLocks > 0) return DISP_E_ARRAYISLOCKED;
  if (array->fFeatures & kDataInDescriptor) SafeArrayDestroyData(array);
  std::free(&PrefixOf(array));
  return S_OK;
}

HRESULT SafeArrayDestroyData(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  if (array->cLocks > 0) return DISP_E_ARRAYISLOCKED;
  if (array->pvData == nullptr) return S_OK;
  const std::size_t size = DataSize(array).value_or(0);
  ReleaseElements(array, 0, size);
  if (array->fFeatures & (kBorrowedData | kDataInDescriptor)) {
    if (size > 0) std::memset(array->pvData, 0, size);
    return S_OK;
  }
  std::free(array->pvData);
  array->pvData = nullptr;
  return S_OK;
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
  if (array == nullptr) return S_OK;
  const HRESULT result = SafeArrayDestroyData(array);
  return FAILED(result) ? result : SafeArrayDestroyDescriptor(array);
}

UINT SafeArrayGetDim(SAFEARRAY* array) { return array == nullptr ? 0 : array->cDims; }

UINT SafeArrayGetElemsize(SAFEARRAY* array) { return array == nullptr ? 0 : array->cbElements; }

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  if (array == nullptr || bound == nullptr) return E_INVALIDARG;
  if (dimension < 1 || dimension > array->cDims) return DISP_E_BADINDEX;
  *bound = array->rgsabound[array->cDims - dimension].lLbound;
  return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
  const HRESULT result = SafeArrayGetLBound(array, dimension, bound);
  if (FAILED(result)) return result;
  const ULONG elements = array->rgsabound[array->cDims - dimension].cElements;
  *bound = static_cast<LONG>(static_cast<ULONG>(*bound) + elements - 1);
  return S_OK;
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
  if (array == nullptr || type == nullptr) return E_INVALIDARG;
  if (array->fFeatures & FADF_HAVEVARTYPE) {
    *type = static_cast<VARTYPE>(PrefixOf(array).words[3]);
  } else if (array->fFeatures & FADF_DISPATCH) {
    *type = VT_DISPATCH;
  } else if (array->fFeatures & FADF_UNKNOWN) {
    *type = VT_UNKNOWN;
  } else {
    return E_INVALIDARG;
  }
  return S_OK;
}

HRESULT SafeArrayLock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  const std::atomic_ref locks(array->cLocks);
  if (++locks <= kMaxLocks) return S_OK;
  --locks;
  return E_UNEXPECTED;
}

HRESULT SafeArrayUnlock(SAFEARRAY* array) {
  if (array == nullptr) return E_INVALIDARG;
  const std::atomic_ref locks(array->cLocks);
  ULONG count = locks.load();
  do {
    if (count == 0) return E_UNEXPECTED;
  } while (!locks.compare_exchange_weak(count, count - 1));
  return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
  if (array == nullptr || data == nullptr) return E_INVALIDARG;
  const HRESULT result = SafeArrayLock(array);
  *data = SUCCEEDED(result) ? array->pvData : nullptr;
  return result;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) { return SafeArrayUnlock(array); }

HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** element) {
  if (array == nullptr || indices == nullptr || element == nullptr) return E_INVALIDARG;
  std::size_t cell = 0;
  // The bounds are kept last dimension first, and the first dimension is the fastest.
  for (UINT k = 0; k < array->cDims; ++k) {
    const SAFEARRAYBOUND& bound = array->rgsabound[k];
    const std::int64_t position =
        std::int64_t{indices[array->cDims - 1 - k]} - std::int64_t{bound.lLbound};
    if (position < 0 || position >= std::int64_t{bound.cElements}) return DISP_E_BADINDEX;
    cell = cell * bound.cElements + static_cast<std::size_t>(position);
  }
  if (array->pvData == nullptr) return E_INVALIDARG;
  *element = At<void>(array->pvData, cell * array->cbElements);
  return S_OK;
}

HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* value) {
  if (value == nullptr) return E_INVALIDARG;
  void* element = nullptr;
  HRESULT result = SafeArrayLock(array);
  if (FAILED(result)) return result;
  result = SafeArrayPtrOfIndex(array, indices, &element);
  if (SUCCEEDED(result)) result = DuplicateElement(array, element, value);
  SafeArrayUnlock(array);
  return result;
}

HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value) {
  HRESULT result = SafeArrayLock(array);
  if (FAILED(result)) return result;
  void* element = nullptr;
  result = SafeArrayPtrOfIndex(array, indices, &element);
  if (SUCCEEDED(result)) {
    const bool itself = array->fFeatures & (FADF_BSTR | FADF_UNKNOWN | FADF_DISPATCH);
    result = ReplaceElement(array, itself ? &value : value, element);
  }
  SafeArrayUnlock(array);
  return result;
}

HRESULT SafeArrayCopy(SAFEARRAY* array, SAFEARRAY** out) {
  if (out == nullptr) return E_INVALIDARG;
  *out = nullptr;
  if (array == nullptr) return S_OK;
  SAFEARRAY* copy = AllocateDescriptor(array->cDims, 0);
  if (copy == nullptr) return E_OUTOFMEMORY;
  copy->fFeatures = array->fFeatures & kElementFeatures;
  copy->cbElements = array->cbElements;
  PrefixOf(copy) = PrefixOf(array);
  std::copy_n(array->rgsabound, array->cDims, copy->rgsabound);
  HRESULT result = array->pvData == nullptr ? S_OK : SafeArrayAllocData(copy);
  if (SUCCEEDED(result) && copy->pvData != nullptr) {
    result = SafeArrayLock(array);
    if (SUCCEEDED(result)) {
      result = DuplicateElements(array, copy, *DataSize(array));
      SafeArrayUnlock(array);
    }
  }
  if (FAILED(result)) {
    SafeArrayDestroy(copy);
    return result;
  }
  *out = copy;
  return S_OK;
}

HRESULT SafeArrayRedim(SAFEARRAY* array, SAFEARRAYBOUND* last_dimension) {
  if (array == nullptr || last_dimension == nullptr || array->fFeatures & FADF_FIXEDSIZE) {
    return E_INVALIDARG;
  }
  if (array->cLocks > 0) return DISP_E_ARRAYISLOCKED;
  const SAFEARRAYBOUND former = array->rgsabound[0];
  const std::size_t old_size = DataSize(array).value_or(0);
  array->rgsabound[0] = *last_dimension;
  const auto new_size = DataSize(array);
  void* data = new_size ? AllocateZeroed(*new_size) : nullptr;
  if (data == nullptr) {
    array->rgsabound[0] = former;
    return E_OUTOFMEMORY;
  }
  if (array->pvData != nullptr) {
    const std::size_t kept = std::min(old_size, *new_size);
    std::memcpy(data, array->pvData, kept);
    ReleaseElements(array, kept, old_size);
    if (!(array->fFeatures & (kBorrowedData | kDataInDescriptor))) std::free(array->pvData);
  }
  array->pvData = data;
  array->fFeatures &= static_cast<USHORT>(~(kBorrowedData | kDataInDescriptor));
  return S_OK;
}

#endif

#include "frame/numeric_object.h"

#include <cstring>
#include <new>

#include "frame/element_operation.h"
#include "frame/library_state.h"
#include "frame/member/arguments.h"
#include "frame/scalar_operand.h"

template <class T>
auto TCNumericBase<T>::Allocate(std::size_t count) -> Storage {
  const std::size_t bytes = (count + vela::GuardElements()) * sizeof(T);
  Storage storage(static_cast<T*>(std::calloc(1, bytes)));
  if (storage == nullptr) throw std::bad_alloc();
  if (vela::IsDebugMode()) std::memset(static_cast<void*>(storage.get()), 0xCC, bytes);
  return storage;
}

template <class T>
TCNumericBase<T>::TCNumericBase(unsigned count, unsigned type_word, void** args) {
  this->InitTypeIDs(type_word);
  constexpr unsigned kMostElements = 0x7FFFFFFF;
  if (count > kMostElements) throw std::bad_alloc();
  own_count_ = m_count = count == 0 ? 1 : static_cast<int>(count);
  own_ = Allocate(m_count);
  m_storage = own_.get();
  if (args == nullptr || *args == nullptr) return;
  vela::member::Run(static_cast<CTCall*>(*args), vela::member::AtLeast(1), [&](auto& arguments) {
    if constexpr (vela::PointElement<T>) {
      vela::member::Check(vela::ReadScalarOperand(arguments.Object(0), *m_storage));
    } else if constexpr (vela::ComplexElement<T>) {
      *m_storage = arguments.Complex(0);
    } else {
      tagMSOOBJVECT source;
      if (arguments.Call().GetArgumentObject(0, source) == status::kOk &&
          source.object != nullptr) {
        vela::member::Check(source.object->GetNumericValue(&source.indices, *m_storage));
      } else {
        const unsigned type_id = arguments.TypeId(0);
        const bool is_wide = type_id == kTypeInt64 || type_id == kTypeUnsignedInt64;
        *m_storage = is_wide ? vela::ValueOfText<T>(arguments.Text(0).c_str())
                             : vela::ConvertValue<T>(arguments.Double(0));
      }
    }
  });
}

template <class T>
TCNumericBase<T>::TCNumericBase(const TCNumericBase& other)
    : m_count(other.m_count), own_(Allocate(other.m_count)), own_count_(other.m_count) {
  this->InitTypeIDs(other.GetTypeID());
  m_storage = own_.get();
  std::memcpy(static_cast<void*>(m_storage), other.m_storage, sizeof(T) * m_count);
}

template <class T>
T* TCNumericBase<T>::Element(const MSOINDICES* at) {
  const int index = at == nullptr ? 0 : at->ObjectIndex();
  return index >= 0 && index < m_count ? m_storage + index : nullptr;
}

template <class T>
unsigned TCNumericBase<T>::GetTypeIDCheckIndex(const MSOINDICES* at) {
  return Element(at) == nullptr ? unsigned{kTypeNone} : this->GetTypeID();
}

template <class T>
void* TCNumericBase<T>::GetArrayElement(const MSOINDICES*, int index) {
  return index >= 0 && index < m_count ? m_storage + index : nullptr;
}

template <class T>
int TCNumericBase<T>::GetUpperBound(const MSOINDICES*, int& upper) {
  upper = m_count - 1;
  return status::kOk;
}

template <class T>
int TCNumericBase<T>::GetString(CStringUTF8& text) {
  return Read(nullptr, text) == status::kOk;
}

template <class T>
int TCNumericBase<T>::GetString(const MSOINDICES* at, CStringUTF8& text) {
  return Read(at, text);
}

template <class T>
int TCNumericBase<T>::SetString(const char* text) {
  return SetString(nullptr, text) == status::kOk;
}

template <class T>
int TCNumericBase<T>::SetString(const MSOINDICES* at, const char* text) {
  if constexpr (vela::SimpleElement<T>) {
    return Write(at, vela::ValueOfText<T>(text));
  } else {
    return Write(at, VELAObj::ParleyStr2double(text));
  }
}

template <class T>
int TCNumericBase<T>::GetDisplayElement(CStringUTF8& text, int index) {
  const MSOINDICES at = MSOINDICES::Object(index < 0 ? 0 : index);
  if (Read(&at, text) != status::kOk) text = "Error: Value cannot be determined";
  return status::kOk;
}

template <class T>
int TCNumericBase<T>::ResetValue() {
  std::fill(Elements().begin(), Elements().end(), T{});
  return Changed();
}

template <class T>
int TCNumericBase<T>::InitalizeFromMemory(const void* memory, int count) {
  if (memory == nullptr || count < 0 || count > m_count) return status::kBadArguments;
  std::memmove(static_cast<void*>(m_storage), memory, sizeof(T) * count);
  return Changed();
}

template <class T>
int TCNumericBase<T>::GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at) {
  const T* element = Element(at);
  if (element == nullptr) return status::kUnresolved;
  if (buffer == nullptr || size < sizeof(T)) return status::kBadArguments;
  std::memcpy(buffer, element, sizeof(T));
  return status::kOk;
}

template <class T>
int TCNumericBase<T>::GetExternalData(void** address) {
  if (address == nullptr) return status::kBadArguments;
  *address = m_storage;
  return status::kOk;
}

template <class T>
int TCNumericBase<T>::SetExternalData(void* address) {
  m_storage = address == nullptr ? own_.get() : static_cast<T*>(address);
  m_count = address == nullptr ? own_count_ : 1;
  return status::kOk;
}

template <class T>
unsigned TCNumericBase<T>::GetBufferSize(const MSOINDICES* at) {
  if (at != nullptr && at->ObjectKind() != MSOINDICES::kWhole) {
    return Element(at) == nullptr ? 0 : sizeof(T);
  }
  return static_cast<unsigned>(sizeof(T)) * m_count;
}

template <class T>
int TCNumericBase<T>::GetBufferMSO(const MSOINDICES* at, void** buffer) {
  if (buffer == nullptr) return status::kBadArguments;
  *buffer = Element(at);
  return *buffer == nullptr ? status::kUnresolved : status::kOk;
}

template <class T>
int TCNumericBase<T>::ReleaseBufferMSO(const MSOINDICES*, void*) {
  return Changed();
}

template <class T>
int TCNumericBase<T>::Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
                               unsigned) {
  const unsigned code = op & operation::kCodeMask;
  if (!vela::IsOperation<T>(code)) return status::kFailed;
  T* element = Element(at);
  if (element == nullptr) return status::kUnresolved;
  T value{};
  if (const int error = vela::ReadScalarOperand(operand, value); error != status::kOk) return error;
  vela::ApplyOperation<T>(code, std::span<T>(element, 1), value, vela::IsDebugMode());
  return Changed();
}

template <class T>
int TCIntegral<T>::RoundDouble(double value) {
  const bool is_unsigned_int = (this->GetTypeID() & kTypeIdMask) == kTypeUnsignedInt;
  constexpr double kLargestUnsigned = 4294967295.0;
  if (is_unsigned_int && value >= kLargestUnsigned) return -1;
  // The 32-bit conversion instruction answers every value outside int with the lowest int.
  if (is_unsigned_int && value >= 2147483648.0) return INT32_MIN;
  return vela::kernel::ConvertElement<int>(value);
}

template <class T>
TCBitField<T>::TCBitField(unsigned bit_count, unsigned type_word, void** args)
    : TCIntegral<T>(1, type_word | kFlagBitField, args),
      m_bit_count(static_cast<std::uint8_t>(bit_count > 32 ? 32 : bit_count)),
      m_mask(static_cast<std::uint32_t>((std::uint64_t{1} << m_bit_count) - 1)) {}

template <class T>
TCBitField<T>::TCBitField(const TCBitField& other)
    : TCIntegral<T>(other),
      m_bit_offset(other.m_bit_offset),
      m_bit_count(other.m_bit_count),
      m_mask(other.m_mask) {
  if (other.m_word == nullptr) return;
  own_word_ = *other.m_word;
  m_word = &own_word_;
}

template <class T>
int TCBitField<T>::SetMemberMemory(void* memory, unsigned bit_offset) {
  if (bit_offset >= 32) return status::kBadArguments;
  m_word = static_cast<std::uint32_t*>(memory);
  m_bit_offset = static_cast<std::uint8_t>(bit_offset);
  return status::kOk;
}

template <class T>
int TCBitField<T>::Changed() {
  if (m_word == nullptr || m_bit_count == 0) return status::kUnresolved;
  T& stored = this->Elements().front();
  // The value's own bits: a negative value that fills its type is not wider than the type.
  std::uint64_t value = static_cast<std::make_unsigned_t<T>>(stored);
  if ((value & ~std::uint64_t{m_mask}) != 0) value = m_mask;
  stored = static_cast<T>(value);
  const auto shifted_mask = static_cast<std::uint32_t>(std::uint64_t{m_mask} << m_bit_offset);
  const auto shifted = static_cast<std::uint32_t>(value << m_bit_offset);
  *m_word = (*m_word & ~shifted_mask) | (shifted & shifted_mask);
  return status::kOk;
}

// The scalars with members of their own derive from these.
template class vela::ValueAccess<TCNumericBase<OneTCcomplex>, CScriptVelaObject>;
template class vela::ValueAccess<TCNumericBase<PointInt>, CScriptVelaObject>;
template class vela::ValueAccess<TCNumericBase<PointDouble>, CScriptVelaObject>;
template class vela::ValueAccess<TCNumericBase<Point3D>, CScriptVelaObject>;
template class TCNumericBase<OneTCcomplex>;
template class TCNumericBase<PointInt>;
template class TCNumericBase<PointDouble>;
template class TCNumericBase<Point3D>;

namespace vela {

CScriptVelaObject* NewNumber(unsigned element_type, unsigned count, void** args) {
  return WithElementType(element_type, [&]<class T>() -> CScriptVelaObject* {
    if constexpr (FloatingElement<T>) return new TCFloating<T>(count, element_type, args);
    if constexpr (IntegerElement<T>) return new TCIntegral<T>(count, element_type, args);
    return nullptr;
  });
}

CScriptVelaObject* NewBitField(unsigned element_type, unsigned bit_count, void** args) {
  return WithElementType(element_type, [&]<class T>() -> CScriptVelaObject* {
    if constexpr (IntegerElement<T> && DatasetElement<T>) {
      return new TCBitField<T>(bit_count, element_type, args);
    }
    return nullptr;
  });
}

}  // namespace vela

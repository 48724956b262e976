// Scalar numeric variables, fixed arrays of them, and bit fields.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>

#include "frame/element_types.h"
#include "frame/element_value.h"
#include "frame/runtime_class.h"
#include "frame/value_access.h"

namespace vela {

// For CreateCopy: a copy-constructed object, or null when it cannot be made.
template <class Object>
Object* NewCopy(const Object& object) noexcept {
  try {
    return new Object(object);
  } catch (...) {
    return nullptr;
  }
}

}  // namespace vela

// A script variable of one or more elements of a type. It has no members of its own: the host reads
// and writes it through the value operations. An operation addresses element at->ObjectIndex(); one
// outside the array is status 2.
template <class T>
class TCNumericBase : public vela::ValueAccess<TCNumericBase<T>, CScriptVelaObject> {
  using Base = vela::ValueAccess<TCNumericBase<T>, CScriptVelaObject>;

 public:
  using Base::GetString;
  using Base::SetString;

  // A count of 0 is 1. New storage is zeroed, or filled with 0xCC in debug mode. args, when given,
  // is one pointer to a call frame whose argument 0 is the initial value of element 0. Throws
  // std::bad_alloc.
  TCNumericBase(unsigned count, unsigned type_word, void** args);

  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("TCNumericBase");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(TCNumericBase),
                                             CScriptVelaObject::GetRuntimeClass()};
    return &runtime_class;
  }
  const char* GetDateTypeString() const override { return vela::kElement<T>.name; }
  const char* GetDataTypeName() const override { return vela::kElement<T>.name; }
  unsigned GetInternalDataTypeID() const override { return vela::kElement<T>.type_id; }
  unsigned GetTypeIDCheckIndex(const MSOINDICES* at) override;
  int GetArraySize() const override { return m_count; }
  void* GetArrayElement(const MSOINDICES* at, int index) override;
  int GetUpperBound(const MSOINDICES* at, int& upper) override;
  int IsValidElement(const MSOINDICES* at) override { return Element(at) != nullptr; }

  int GetString(CStringUTF8& text) override;
  int GetString(const MSOINDICES* at, CStringUTF8& text) override;
  int SetString(const char* text) override;
  int SetString(const MSOINDICES* at, const char* text) override;
  int GetDisplayElement(CStringUTF8& text, int index) override;

  // Fills every element with zero.
  int ResetValue() override;
  // Copies count elements from memory; status 3 when the variable has fewer.
  int InitalizeFromMemory(const void* memory, int count) override;
  int GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at) override;
  int GetExternalData(void** address) override;
  int SetExternalData(void* address) override;
  unsigned GetBufferSize(const MSOINDICES* at) override;
  int GetBufferMSO(const MSOINDICES* at, void** buffer) override;
  int ReleaseBufferMSO(const MSOINDICES* at, void* buffer) override;

  // The binary operators in place, by the rules of vector elements; the operand is read as T.
  // Status 1 for another code.
  int Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
               unsigned options) override;

  template <class U>
  int Read(const MSOINDICES* at, U& value);
  template <class U>
  int Write(const MSOINDICES* at, const U& value);

 protected:
  TCNumericBase(const TCNumericBase& other);

  // Null when the indices address no element.
  T* Element(const MSOINDICES* at);
  std::span<T> Elements() { return {m_storage, static_cast<std::size_t>(m_count)}; }
  // Called after every change of the value; its status is the change's.
  virtual int Changed() { return status::kOk; }

 private:
  struct Free {
    void operator()(T* p) const { std::free(p); }
  };
  using Storage = std::unique_ptr<T, Free>;
  static Storage Allocate(std::size_t count);

  T* m_storage;
  int m_count;
  Storage own_;  // what m_storage points at, unless the value lives in external data
  int own_count_;
};

template <class T>
template <class U>
int TCNumericBase<T>::Read(const MSOINDICES* at, U& value) {
  const T* element = Element(at);
  if (element == nullptr) return status::kUnresolved;
  if constexpr (std::is_same_v<U, CStringUTF8>) {
    value = vela::ValueText(*element);
  } else {
    value = vela::ConvertValue<U>(*element);
  }
  return status::kOk;
}

template <class T>
template <class U>
int TCNumericBase<T>::Write(const MSOINDICES* at, const U& value) {
  T* element = Element(at);
  if (element == nullptr) return status::kUnresolved;
  *element = vela::ConvertValue<T>(value);
  return Changed();
}

template <class T>
class TCIntegral : public TCNumericBase<T> {
 public:
  using TCNumericBase<T>::TCNumericBase;
  // Truncates toward zero and saturates at the ends of int; the upper end of an unsigned int object
  // is 4294967295, given as its bit pattern, while values from 2147483648 up to there give
  // 0x80000000.
  int RoundDouble(double value) override;
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
  TCIntegral(const TCIntegral&) = default;
};

template <class T>
class TCFloating : public TCNumericBase<T> {
 public:
  using TCNumericBase<T>::TCNumericBase;
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
};

// An integer of bit_count bits (at most 32) inside a word of a script structure. It keeps its own
// value and copies it into the word after each change; without a word every change fails with 2. A
// copy never reaches into the structure: it has a word of its own, when the original has one.
template <class T>
class TCBitField : public TCIntegral<T> {
 public:
  TCBitField(unsigned bit_count, unsigned type_word, void** args);
  TCBitField(const TCBitField& other);
  // The word must outlive the field; bit_offset is the place of the field's lowest bit, below 32.
  int SetMemberMemory(void* memory, unsigned bit_offset) override;
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }

 protected:
  // A value with bits outside the mask becomes the mask itself: all ones.
  int Changed() override;

 private:
  std::uint8_t m_bit_offset = 0;
  std::uint8_t m_bit_count;
  std::uint32_t m_mask;
  std::uint32_t* m_word = nullptr;
  std::uint32_t own_word_ = 0;  // the word of a copy
};

extern template class vela::ValueAccess<TCNumericBase<OneTCcomplex>, CScriptVelaObject>;
extern template class vela::ValueAccess<TCNumericBase<PointInt>, CScriptVelaObject>;
extern template class vela::ValueAccess<TCNumericBase<PointDouble>, CScriptVelaObject>;
extern template class vela::ValueAccess<TCNumericBase<Point3D>, CScriptVelaObject>;

namespace vela {

// A new number, or array of them, of a real element type; a new bit field of an integer type of at
// most 32 bits. Owned by the caller; null for another type. Throw std::bad_alloc.
CScriptVelaObject* NewNumber(unsigned element_type, unsigned count, void** args);
CScriptVelaObject* NewBitField(unsigned element_type, unsigned bit_count, void** args);

}  // namespace vela

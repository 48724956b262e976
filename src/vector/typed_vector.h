// The typed layers of a vector: element access for the host, the members, and the free-standing
// vector that owns its rows.
#pragma once

#include <span>
#include <vector>

#include "frame/interface/missing_value.h"
#include "frame/member/table.h"
#include "frame/value_access.h"
#include "vector/element_buffer.h"
#include "vector/vector_base.h"

// Element access and the host-facing operations, over the row operations that a storage class
// supplies. An operation addresses element at->element of row at->ObjectIndex(); status 2 for a row
// that cannot be resolved, 28 outside the rows or elements, 290 for a negative element.
template <class T>
class TCAllVectorsBaseBase
    : public vela::ValueAccess<TCAllVectorsBaseBase<T>, TCAllVectorNonTemplBase> {
  using Base = vela::ValueAccess<TCAllVectorsBaseBase<T>, TCAllVectorNonTemplBase>;

 public:
  using Base::Base;
  using Base::GetString;
  using Base::GetUpperBound;
  using Base::SetString;

  unsigned GetInternalDataTypeID() const override { return vela::kElement<T>.type_id; }
  const char* GetDateTypeString() const override { return vela::kElement<T>.name; }
  const char* GetTCTypeName() const override { return "vector"; }
  int IsSameTypeAndMemoryModel(const CScriptVelaObject* other) const override;
  int GetArraySize() const override { return this->RowCount(); }
  void* GetArrayElement(const MSOINDICES* at, int index) override;
  int GetUpperBound(const MSOINDICES* at, int& upper) override;
  int IsValidElement(const MSOINDICES* at) override;
  int SetVectorDimension(const MSOINDICES* at, int size) override;
  unsigned GetTypeIDCheckIndex(const MSOINDICES* at) override;

  // "double(10)" for the whole vector (points: "{Vector <point>}"), else the text of the element.
  int GetString(CStringUTF8& text) override;
  int GetString(const MSOINDICES* at, CStringUTF8& text) override;
  int SetString(const MSOINDICES* at, const char* text) override;
  int GetDisplayElement(CStringUTF8& text, int index) override;
  int GetDisplayElementEx(CStringUTF8& text, const MSOINDICES* at) override;
  int GetDisplaySize(int& rows, int& cols) override;
  int GetDisplaySizeEx(const MSOINDICES* at, int& rows, int& cols) override;

  // Row 0 becomes the count elements in memory.
  int InitalizeFromMemory(const void* memory, int count) override;
  int GetValueToBuffer(void* buffer, unsigned size, const MSOINDICES* at) override;
  // Address of row 0's elements; null when they are not one buffer.
  int GetExternalData(void** address) override;
  // Every row becomes empty.
  int ResetValue() override;
  // Bytes of the addressed row.
  unsigned GetBufferSize(const MSOINDICES* at) override;
  int SetBufferSize(const MSOINDICES* at, unsigned bytes) override;
  // Lends the addressed row. In debug mode the buffer is a copy with two guard bytes behind it;
  // ReleaseBufferMSO reports a write beyond the size and copies the elements back.
  int GetBufferMSO(const MSOINDICES* at, void** buffer) override;
  int ReleaseBufferMSO(const MSOINDICES* at, void* buffer) override;

  int Operate2(const MSOINDICES* at, unsigned op, const tagMSOOBJVECT& operand,
               unsigned options) override;

  vela::ElementRun ContiguousRun(int row) override;
  int StoreRun(int row, std::size_t offset, const vela::ElementRun& run) override;

  template <class U>
  int Read(const MSOINDICES* at, U& value);
  template <class U>
  int Write(const MSOINDICES* at, const U& value);

 protected:
  // --- What a storage class supplies; row is 0 .. RowCount() - 1 ---

  // The row's elements when they are one buffer that may be written in place.
  virtual std::span<T> Elements(int row) = 0;
  virtual bool IsContiguous(int row) const = 0;
  virtual bool IsSizeFixed(int row) const = 0;
  virtual void SetSizeFixed(int row) = 0;
  virtual T ReadElement(int row, std::size_t index) = 0;
  virtual int WriteElement(int row, std::size_t index, const T& value) = 0;

  template <class>
  friend class RowAccess;

 private:
  struct LentBuffer {
    std::unique_ptr<unsigned char[]> bytes;
    int row;
    std::size_t size;
  };

  // Status and place of the addressed element.
  int Locate(const MSOINDICES* at, int& row, std::size_t& index);
  int OperateOnElement(const MSOINDICES* at, unsigned code, const tagMSOOBJVECT& operand);
  int OperateOnRow(int row, unsigned code, const tagMSOOBJVECT& operand, unsigned options);
  int AssignRow(int row, const vela::VectorArgument& source, unsigned options);

  std::vector<LentBuffer> lent_;
};

template <class T>
template <class U>
int TCAllVectorsBaseBase<T>::Read(const MSOINDICES* at, U& value) {
  int row;
  std::size_t index;
  if (const int error = Locate(at, row, index); error != status::kOk) return error;
  const T element = ReadElement(row, index);
  if constexpr (std::is_same_v<U, CStringUTF8>) {
    value = vela::ValueText(element);
  } else {
    value = vela::ConvertValue<U>(element);
  }
  return status::kOk;
}

template <class T>
template <class U>
int TCAllVectorsBaseBase<T>::Write(const MSOINDICES* at, const U& value) {
  int row;
  std::size_t index;
  if (const int error = Locate(at, row, index); error != status::kOk) return error;
  return WriteElement(row, index, vela::ConvertValue<T>(value));
}

// A row's elements as one span, whatever the storage: in place when the row is one buffer, else a
// copy that Commit writes back.
template <class T>
class RowAccess {
 public:
  RowAccess(TCAllVectorsBaseBase<T>& vector, int row) : vector_(vector), row_(row) {
    if (vector.IsContiguous(row)) {
      elements_ = vector.Elements(row);
      return;
    }
    copy_.resize(vector.RowSize(row));
    for (std::size_t i = 0; i < copy_.size(); ++i) copy_[i] = vector.ReadElement(row, i);
    elements_ = copy_;
  }
  std::span<T> Elements() { return elements_; }
  std::span<const T> Elements() const { return elements_; }

  // Writes a copied row back; a status.
  int Commit() {
    for (std::size_t i = 0; i < copy_.size(); ++i) {
      if (const int error = vector_.WriteElement(row_, i, copy_[i]); error != status::kOk) {
        return error;
      }
    }
    vector_.SetModify(1);
    return status::kOk;
  }

 private:
  TCAllVectorsBaseBase<T>& vector_;
  int row_;
  std::span<T> elements_;
  std::vector<T> copy_;
};

namespace vela {

// The argument as a vector of T; null when it is absent or of another type.
template <class T>
TCAllVectorsBaseBase<T>* TypedVector(const VectorArgument& argument) {
  return dynamic_cast<TCAllVectorsBaseBase<T>*>(argument.vector);
}

}  // namespace vela

// The members, for every element type.
template <class T>
class TCAllVectorsBase
    : public vela::member::WithMembers<TCAllVectorsBase<T>, TCAllVectorsBaseBase<T>> {
  using Base = vela::member::WithMembers<TCAllVectorsBase, TCAllVectorsBaseBase<T>>;

 public:
  using Base::Base;
  using TCAllVectorsBaseBase<T>::GetUpperBound;

  static const CClassMember* MemberTable() {
    return vela::member::TypeTable<TCAllVectorsBase>::Rows();
  }
  static std::initializer_list<CClassMember> MemberRows();

  int Append(CTCall* call) override;
  int Sort(CTCall* call) override;
  int Reorder(CTCall* call) override;
  int Sum(CTCall* call) override;
  int GetMinMax(CTCall* call) override;
  int Difference(CTCall* call) override;
  int FrequencyCount(CTCall* call) override;
  int GetBytes(CTCall* call) override;
  int SetBytes(CTCall* call) override;
  int Data(CTCall* call) override;
  int Uniform(CTCall* call) override;
  int Normal(CTCall* call) override;
  int Wrap(CTCall* call) override;
  int GetSubVector(CTCall* call) override;
  int SetSubVector(CTCall* call) override;
  int GetDataAsOneDimensionalArray(CTCall* call) override;
  int GetAs1DArray(CTCall* call) override;
  int Find(CTCall* call) override;
  int GetAs2DArray(CTCall* call) override;
  int Average(CTCall* call) override;
  int GetReal(CTCall* call) override;
  int GetImaginary(CTCall* call) override;
  int GetAmplitude(CTCall* call) override;
  int GetPhase(CTCall* call) override;
  int Conjugate(CTCall* call) override;
  int MakeComplex(CTCall* call) override;
  int GetUpperBound(CTCall* call) override;
  int GetLowerBound(CTCall* call) override;
  int GetName(CTCall* call) override;
  int TrimLeft(CTCall* call) override;
  int TrimRight(CTCall* call) override;
  int Trim(CTCall* call) override;
  int CopyData(CTCall* call) override;
  int Replace(CTCall* call) override;
  int InsertValue(CTCall* call) override;
  int GetOutputComment(CTCall* call) override;
  int SetOutputComment(CTCall* call) override;
  int Abs(CTCall* call) override;
  int Pattern(CTCall* call) override;
  int Merge(CTCall* call) override;
  int Product(CTCall* call) override;

  // The members of the per-type table.
  int GetDataAsOneDimensionalArrayOfVariants(CTCall* call);
  int Add(CTCall* call);
  int SetAtGrow(CTCall* call);
  int InsertAt(CTCall* call);
  int RemoveAt(CTCall* call);

 protected:
  // Ends a member with 3 when the argument that it writes to is the row that it works on.
  void RefuseSameRow(const vela::VectorArgument& argument, int row) const {
    if (argument.IsRow(this, row)) vela::member::Fail(status::kBadArguments);
  }
  // Inserts count copies before index; beyond the end the row first grows up to it.
  void InsertElements(int row, std::size_t index, std::size_t count, const T& value);
  // Stores a numeric total in a by-reference argument by the reference's type; fails with 13702
  // when the reference is narrower than the elements.
  void SetTotal(vela::member::Arguments& args, unsigned arg, const OneTCcomplex& total);
  void RefuseNarrowReference(vela::member::Arguments& args, unsigned arg);
  // Makes the row the size doubles, converted, that compute(span) writes. A row of doubles takes
  // them in place, unless compute still reads the row.
  template <class Compute>
  void StoreComputed(int row, std::size_t size, bool reads_row, Compute&& compute);
  // The seeded generators: arguments count and seed; fill(random, values) draws a run of values.
  template <class Fill>
  int FillSeeded(CTCall* call, Fill&& fill);
  // The members that fill a double vector with part(z) of each complex element.
  template <class Part>
  int FillParts(CTCall* call, Part&& part);
  // The members that return the row as an automation array in the layout that read(args) gives.
  template <class ReadLayout>
  int ReturnArray(CTCall* call, const vela::member::Arity& arity, ReadLayout&& read);

 private:
  CStringUTF8 output_comment_;
};

// A vector that owns its rows.
template <class T>
class TCVectorBase : public TCAllVectorsBase<T> {
 public:
  // rows 0 is 1. args, when given, is one pointer to a call frame whose argument 0 is copied into
  // row 0; when it cannot be, code 48 is reported and the vector stays empty.
  TCVectorBase(void** args, unsigned type_id, unsigned rows, bool is_array);
  TCVectorBase(const TCVectorBase& other);

  CScriptVelaObject* CreateCopy() override;
  int RowCount() const override { return static_cast<int>(rows_.size()); }
  std::size_t RowSize(int row) const override { return rows_[row].elements.size(); }
  int RowLowerBound(int row) const override { return rows_[row].lower; }
  int RawResize(int row, std::int64_t size) override;
  int RawGrow(int row, std::int64_t size) override;
  int RawReserve(int row, std::int64_t size) override;
  int ResizeWithLowerBound(int row, std::int64_t size, int lower) override;

 protected:
  std::span<T> Elements(int row) override { return rows_[row].elements.Elements(); }
  bool IsContiguous(int) const override { return true; }
  bool IsSizeFixed(int row) const override { return rows_[row].size_fixed; }
  void SetSizeFixed(int row) override { rows_[row].size_fixed = true; }
  T ReadElement(int row, std::size_t index) override { return Elements(row)[index]; }
  int WriteElement(int row, std::size_t index, const T& value) override {
    Elements(row)[index] = value;
    return status::kOk;
  }

 private:
  struct Storage {
    vela::ElementBuffer<T> elements;
    int lower = 0;
    bool size_fixed = false;
  };
  std::vector<Storage> rows_;
};

// The leaves of the factory's table differ in their element type alone.
template <class T>
using TCVectorFloating = TCVectorBase<T>;
template <class T>
using TCVectorIntegral = TCVectorBase<T>;
template <class Part>
using TCComplexVector = TCVectorBase<OneTCcomplex>;
using TClccomplexVector = TCVectorBase<OneTCcomplex>;
template <class T, int N>
using TCPointVector = TCVectorBase<CTKPointBase<T, N>>;

// Instantiated in the files of this folder, a few element types each.
extern template class TCAllVectorsBaseBase<char>;
extern template class TCAllVectorsBase<char>;
extern template class TCVectorBase<char>;
extern template class TCAllVectorsBaseBase<unsigned char>;
extern template class TCAllVectorsBase<unsigned char>;
extern template class TCVectorBase<unsigned char>;
extern template class TCAllVectorsBaseBase<short>;
extern template class TCAllVectorsBase<short>;
extern template class TCVectorBase<short>;
extern template class TCAllVectorsBaseBase<unsigned short>;
extern template class TCAllVectorsBase<unsigned short>;
extern template class TCVectorBase<unsigned short>;
extern template class TCAllVectorsBaseBase<int>;
extern template class TCAllVectorsBase<int>;
extern template class TCVectorBase<int>;
extern template class TCAllVectorsBaseBase<unsigned>;
extern template class TCAllVectorsBase<unsigned>;
extern template class TCVectorBase<unsigned>;
extern template class TCAllVectorsBaseBase<std::int64_t>;
extern template class TCAllVectorsBase<std::int64_t>;
extern template class TCVectorBase<std::int64_t>;
extern template class TCAllVectorsBaseBase<std::uint64_t>;
extern template class TCAllVectorsBase<std::uint64_t>;
extern template class TCVectorBase<std::uint64_t>;
extern template class TCAllVectorsBaseBase<float>;
extern template class TCAllVectorsBase<float>;
extern template class TCVectorBase<float>;
extern template class TCAllVectorsBaseBase<double>;
extern template class TCAllVectorsBase<double>;
extern template class TCVectorBase<double>;
extern template class TCAllVectorsBaseBase<OneTCcomplex>;
extern template class TCAllVectorsBase<OneTCcomplex>;
extern template class TCVectorBase<OneTCcomplex>;
extern template class TCAllVectorsBaseBase<PointInt>;
extern template class TCAllVectorsBase<PointInt>;
extern template class TCVectorBase<PointInt>;
extern template class TCAllVectorsBaseBase<PointDouble>;
extern template class TCAllVectorsBase<PointDouble>;
extern template class TCVectorBase<PointDouble>;
extern template class TCAllVectorsBaseBase<Point3D>;
extern template class TCAllVectorsBase<Point3D>;
extern template class TCVectorBase<Point3D>;

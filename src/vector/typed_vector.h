// The typed layers of a vector: what tells its element type, and the free-standing vector that owns
// its rows.
#pragma once

#include <initializer_list>
#include <new>
#include <vector>

#include "frame/element_types.h"
#include "frame/member/table.h"
#include "frame/numeric_object.h"
#include "vector/element_buffer.h"
#include "vector/vector_base.h"

template <class T>
class TCAllVectorsBaseBase : public TCAllVectorNonTemplBase {
 public:
  using TCAllVectorNonTemplBase::TCAllVectorNonTemplBase;

  unsigned GetInternalDataTypeID() const override { return vela::kElement<T>.type_id; }
  const char* GetDateTypeString() const override { return vela::kElement<T>.name; }
  const char* GetTCTypeName() const override { return "vector"; }
};

template <class T>
class TCAllVectorsBase
    : public vela::member::WithMembers<TCAllVectorsBase<T>, TCAllVectorsBaseBase<T>> {
  using Base = vela::member::WithMembers<TCAllVectorsBase, TCAllVectorsBaseBase<T>>;

 public:
  using Base::Base;

  static const CClassMember* MemberTable() {
    return vela::member::TypeTable<TCAllVectorsBase>::Rows();
  }
  static std::initializer_list<CClassMember> MemberRows() {
    using vela::member::Method;
    static const std::initializer_list<CClassMember> rows = {
        Method("GetDataAsOneDimensionalArrayOfVariants",
               &TCAllVectorsBase::GetDataAsOneDimensionalArrayOfVariants),
        Method("Add", &TCAllVectorsBase::Add),
        Method("SetAtGrow", &TCAllVectorsBase::SetAtGrow),
        Method("InsertAt", &TCAllVectorsBase::InsertAt),
        Method("RemoveAt", &TCAllVectorsBase::RemoveAt),
    };
    return rows;
  }
};

namespace vela {

// The rows that a free-standing vector owns. The operations are those of the vector.
class OwnedRows {
 public:
  OwnedRows(unsigned element_type, unsigned count);
  // Throws std::bad_alloc.
  OwnedRows(const OwnedRows& other);

  int Count() const { return count_; }
  std::size_t Size(int row) const { return rows_[row].elements.size(); }
  int LowerBound(int row) const { return rows_[row].lower; }
  bool IsSizeFixed(int row) const { return rows_[row].size_fixed; }
  void SetSizeFixed(int row) { rows_[row].size_fixed = true; }
  ElementSpan Elements(int row) {
    ElementBuffer& elements = rows_[row].elements;
    return {element_type_, elements.Data(), elements.size()};
  }
  int Resize(int row, std::int64_t size, Contents contents);
  int Grow(int row, std::int64_t size);
  int Reserve(int row, std::int64_t size);
  int ResizeWithLowerBound(int row, std::int64_t size, int lower);

 private:
  struct Row {
    ElementBuffer elements;
    int lower = 0;
    bool size_fixed = false;
  };
  unsigned element_type_;
  int count_;
  std::vector<Row> rows_;
};

// Assigns argument 0 of the call frame that args points to, a vector, to row 0; when it cannot be,
// code 48 is reported and the vector stays empty. Without args nothing is done.
void InitialiseFromArguments(TCAllVectorNonTemplBase& vector, void** args);

}  // namespace vela

// A vector that owns its rows.
template <class T>
class TCVectorBase : public TCAllVectorsBase<T> {
 public:
  // rows 0 is 1. args, when given, is one pointer to a call frame that initialises row 0.
  TCVectorBase(void** args, unsigned type_id, unsigned rows, bool is_array)
      : TCAllVectorsBase<T>((type_id & kTypeIdMask) | kFlagVector),
        rows_(vela::kElement<T>.type_id, is_array ? rows : 1) {
    vela::InitialiseFromArguments(*this, args);
  }
  TCVectorBase(const TCVectorBase& other)
      : TCAllVectorsBase<T>(other.GetTypeID()), rows_(other.rows_) {}

  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
  int LayerCount() const override { return rows_.Count(); }
  vela::LayerShape ShapeOf(int row) const override {
    return vela::LayerShape::OneRow(static_cast<std::int64_t>(rows_.Size(row)));
  }
  std::size_t SizeOf(int row) const override { return rows_.Size(row); }
  int LowerBoundOf(int row) const override { return rows_.LowerBound(row); }
  vela::ElementSpan BufferOf(int row) override { return rows_.Elements(row); }
  int ResizeLayer(int row, const vela::LayerShape& shape, vela::Contents contents) override {
    return rows_.Resize(row, shape.Size(), contents);
  }
  int RawResize(int row, std::int64_t size) override {
    return rows_.Resize(row, size, vela::Contents::kKeep);
  }
  int GrowLayer(int row, std::int64_t size) override { return rows_.Grow(row, size); }
  int ReserveLayer(int row, std::int64_t size) override { return rows_.Reserve(row, size); }
  int ResizeWithLowerBound(int row, std::int64_t size, int lower) override {
    return rows_.ResizeWithLowerBound(row, size, lower);
  }

 protected:
  bool IsSizeFixed(int row) const override { return rows_.IsSizeFixed(row); }
  void SetSizeFixed(int row) override { rows_.SetSizeFixed(row); }

 private:
  vela::OwnedRows rows_;
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

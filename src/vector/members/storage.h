// The free-standing vector: rows that it owns.
#pragma once

#include "frame/numeric_object.h"
#include "vector/typed_vector.h"

template <class T>
std::initializer_list<CClassMember> TCAllVectorsBase<T>::MemberRows() {
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

template <class T>
TCVectorBase<T>::TCVectorBase(void** args, unsigned type_id, unsigned rows, bool is_array)
    : TCAllVectorsBase<T>((type_id & kTypeIdMask) | kFlagVector), rows_(is_array ? rows : 1) {
  if (args == nullptr || *args == nullptr) return;
  const int error = vela::member::Run(
      static_cast<CTCall*>(*args), vela::member::AtLeast(1), [&](vela::member::Arguments& call) {
        const vela::VectorArgument source = vela::RequiredVector(call, 0);
        const tagMSOOBJVECT operand(source.vector, source.vector->GetTypeID(),
                                    MSOINDICES::Object(source.row));
        return this->Operate2(nullptr, operation::kAssign, operand, 0);
      });
  if (error != status::kOk) vela::ReportError(status::kReportBadInitialiser, args);
}

template <class T>
TCVectorBase<T>::TCVectorBase(const TCVectorBase& other)
    : TCAllVectorsBase<T>(other.GetTypeID()), rows_(other.rows_.size()) {
  for (std::size_t row = 0; row < rows_.size(); ++row) {
    if (!rows_[row].elements.CopyFrom(other.rows_[row].elements.Elements())) throw std::bad_alloc();
    rows_[row].lower = other.rows_[row].lower;
    rows_[row].size_fixed = other.rows_[row].size_fixed;
  }
}

template <class T>
CScriptVelaObject* TCVectorBase<T>::CreateCopy() {
  return vela::NewCopy(*this);
}

template <class T>
int TCVectorBase<T>::RawResize(int row, std::int64_t size) {
  if (size < 0 || !rows_[row].elements.Resize(static_cast<std::size_t>(size))) {
    return status::kCannotResize;
  }
  return status::kOk;
}

template <class T>
int TCVectorBase<T>::RawGrow(int row, std::int64_t size) {
  if (size < 0 || !rows_[row].elements.Grow(static_cast<std::size_t>(size))) {
    return status::kCannotResize;
  }
  return status::kOk;
}

template <class T>
int TCVectorBase<T>::RawReserve(int row, std::int64_t size) {
  if (size < 0 || !rows_[row].elements.Reserve(static_cast<std::size_t>(size))) {
    return status::kCannotResize;
  }
  return status::kOk;
}

template <class T>
int TCVectorBase<T>::ResizeWithLowerBound(int row, std::int64_t size, int lower) {
  if (lower < 0) return status::kOutOfRange;
  if (const int error = RawResize(row, size); error != status::kOk) return error;
  const int end = static_cast<int>(std::min<std::int64_t>(lower, size));
  for (T& element : Elements(row).first(std::max(end, 0))) {
    element = vela::ConvertValue<T>(kMissingValue);
  }
  rows_[row].lower = lower;
  return status::kOk;
}

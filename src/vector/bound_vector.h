// Vectors bound to host data: Dataset, Curve and categorical data. A new one is not attached: it
// has one empty row that cannot be resized until the host attaches it to a source.
#pragma once

#include "vector/typed_vector.h"

namespace vela {

// The rows of the tables, which are the same for every element type.
std::initializer_list<CClassMember> DatasetRows();
std::initializer_list<CClassMember> CurveRows();
std::initializer_list<CClassMember> CategoricalRows();

}  // namespace vela

template <class T>
class TCOVectorBase : public vela::member::WithMembers<TCOVectorBase<T>, TCAllVectorsBase<T>> {
  using Base = vela::member::WithMembers<TCOVectorBase, TCAllVectorsBase<T>>;

 public:
  explicit TCOVectorBase(unsigned type_id, unsigned flag = kFlagDataset)
      : Base((type_id & kTypeIdMask) | flag) {}

  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("TCOVectorBase");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(TCOVectorBase),
                                             Base::GetRuntimeClass()};
    return &runtime_class;
  }
  static const CClassMember* MemberTable() {
    return vela::member::TypeTable<TCOVectorBase>::Rows();
  }
  static std::initializer_list<CClassMember> MemberRows() { return vela::DatasetRows(); }

  int LayerCount() const override { return 1; }
  int RawResize(int, std::int64_t) override { return status::kFailed; }
  // Without elements there is nothing to read or store.
  int ReadElements(int, std::size_t, const vela::ElementSpan&) override { return status::kOk; }
  int StoreElements(int, std::size_t, const vela::ConstElementSpan&) override {
    return status::kOk;
  }
};

template <class T>
using TCOVectorIntegral = TCOVectorBase<T>;
template <class T>
using TCOVectorFloating = TCOVectorBase<T>;
using TCOVectordouble = TCOVectorBase<double>;

// A Dataset together with its X. The integral and floating curves of the class table.
template <class T>
class TCCurve : public vela::member::WithMembers<TCCurve<T>, TCOVectorBase<T>> {
  using Base = vela::member::WithMembers<TCCurve, TCOVectorBase<T>>;

 public:
  explicit TCCurve(unsigned type_id) : Base(type_id, kFlagCurve) {}

  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("TCCurve");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(TCCurve),
                                             Base::GetRuntimeClass()};
    return &runtime_class;
  }
  static const CClassMember* MemberTable() { return vela::member::TypeTable<TCCurve>::Rows(); }
  static std::initializer_list<CClassMember> MemberRows() { return vela::CurveRows(); }
};

template <class T>
using TCCurveIntegral = TCCurve<T>;
template <class T>
using TCCurveFloating = TCCurve<T>;
using TCCurvedouble = TCCurve<double>;

class TCOlccomplexVector
    : public vela::member::WithMembers<TCOlccomplexVector, TCOVectorBase<OneTCcomplex>> {
  using Base = vela::member::WithMembers<TCOlccomplexVector, TCOVectorBase<OneTCcomplex>>;

 public:
  using Base::Base;
  const CRuntimeClass* GetRuntimeClass() const override;
  static const CClassMember* MemberTable();
};

template <class T>
class tcCategoricalData : public vela::member::WithMembers<tcCategoricalData<T>, TCOVectorBase<T>> {
  using Base = vela::member::WithMembers<tcCategoricalData, TCOVectorBase<T>>;

 public:
  explicit tcCategoricalData(unsigned type_id) : Base(type_id, kFlagCategorical) {}
  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("tcCategoricalData");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(tcCategoricalData),
                                             Base::GetRuntimeClass()};
    return &runtime_class;
  }
  static const CClassMember* MemberTable() {
    return vela::member::TypeTable<tcCategoricalData>::Rows();
  }
  static std::initializer_list<CClassMember> MemberRows() { return vela::CategoricalRows(); }
};

// Matrices bound to host MatrixObjects. A new one is not attached and has no layer.
#pragma once

#include <initializer_list>

#include "matrix/typed_matrix.h"

namespace vela {

// The rows of the table of every bound matrix.
std::initializer_list<CClassMember> MatrixObjectRows();

}  // namespace vela

template <class T>
class TCOMatrixBase : public vela::member::WithMembers<TCOMatrixBase<T>, TCAllMatricesBase<T>> {
  using Base = vela::member::WithMembers<TCOMatrixBase, TCAllMatricesBase<T>>;

 public:
  explicit TCOMatrixBase(unsigned type_id) : Base((type_id & kTypeIdMask) | kFlagMatrixObject) {}

  const CRuntimeClass* GetRuntimeClass() const override {
    static constexpr auto kName = vela::TemplateName<T>("TCOMatrixBase");
    static const CRuntimeClass runtime_class{kName.data(), sizeof(TCOMatrixBase),
                                             Base::GetRuntimeClass()};
    return &runtime_class;
  }
  static const CClassMember* MemberTable() {
    return vela::member::TypeTable<TCOMatrixBase>::Rows();
  }
  static std::initializer_list<CClassMember> MemberRows() { return vela::MatrixObjectRows(); }
};

template <class T>
using TCOMatrixFloating = TCOMatrixBase<T>;
template <class T>
using TCOMatrixIntegral = TCOMatrixBase<T>;
using TCOlccomplexMatrix = TCOMatrixBase<OneTCcomplex>;

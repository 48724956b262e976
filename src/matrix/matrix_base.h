// The element-type-free base of every matrix, with the general member table.
#pragma once

#include <initializer_list>

#include "frame/container/tensors_base.h"
#include "frame/member/table.h"
#include "frame/runtime_class.h"

class TCAllMatrixNonTemplBase
    : public vela::member::WithMembers<TCAllMatrixNonTemplBase, TCAllTensorsBase> {
 public:
  explicit TCAllMatrixNonTemplBase(unsigned type_word) { InitTypeIDs(type_word); }

  using TCAllTensorsBase::GetString;
  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "matrixbase"; }
  static const CClassMember* MemberTable();
  int GetString(CStringUTF8& text) override;
};

namespace vela {

// The rows of the table of every bound matrix.
std::initializer_list<CClassMember> MatrixObjectRows();

}  // namespace vela

// A matrix bound to a host MatrixObject. A new one is not attached and has no layer.
template <class T>
class TCOMatrixBase : public vela::member::WithMembers<TCOMatrixBase<T>, TCAllMatrixNonTemplBase> {
  using Base = vela::member::WithMembers<TCOMatrixBase, TCAllMatrixNonTemplBase>;

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

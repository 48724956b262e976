// The element-type-free base of every matrix, with the general member table.
#pragma once

#include <initializer_list>

#include "vector/tensors_base.h"

class TCAllMatrixNonTemplBase : public TCAllTensorsBase {
 public:
  explicit TCAllMatrixNonTemplBase(unsigned type_word) { InitTypeIDs(type_word); }

  using TCAllTensorsBase::GetString;
  const char* GetTCTypeName() const override { return "matrixbase"; }
  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;
  int GetString(CStringUTF8& text) override;
};

// A matrix bound to a host MatrixObject. A new one is not attached and has no layer.
template <class T>
class TCOMatrixBase : public TCAllMatrixNonTemplBase {
 public:
  explicit TCOMatrixBase(unsigned type_id)
      : TCAllMatrixNonTemplBase((type_id & kTypeIdMask) | kFlagMatrixObject) {}

  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;
  static std::initializer_list<CClassMember> MemberRows();
};

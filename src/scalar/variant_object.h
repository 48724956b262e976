// The script class "_VARIANT": automation values.
#pragma once

#include <vector>

#include "frame/interface/tessel_object.h"
#include "frame/member/table.h"
#include "platform/automation.h"

// One or more automation values; an operation addresses element at->ObjectIndex(), status 2 outside
// them. The object owns its values and clears them.
class TCVariantObj : public vela::member::WithMembers<TCVariantObj, TesselCObject> {
 public:
  // A count of 0 is 1. args, when given, is one pointer to a call frame whose argument 0 is the
  // initial value. Throws std::bad_alloc.
  TCVariantObj(unsigned count, unsigned type_word, void** args);
  TCVariantObj(const TCVariantObj& other);
  ~TCVariantObj() override;

  using TesselCObject::GetNumericValue;
  using TesselCObject::SetNumericValue;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "_VARIANT"; }
  static const CClassMember* MemberTable();
  int GetArraySize() const override { return static_cast<int>(values_.size()); }
  int IsVariantArraySource() override { return 1; }
  VARIANT* GetVariantAddress(const MSOINDICES* at) override;
  int GetIntoVariant(const MSOINDICES* at, VARIANT* value) override;
  int SetFromVariant(const MSOINDICES* at, const VARIANT* value) override;
  int GetNumericValue(const MSOINDICES* at, VARIANT& value) override;
  int SetNumericValue(const MSOINDICES* at, const VARIANT& value) override;
  int ResetValue() override;
  CScriptVelaObject* CreateCopy() override;

 private:
  std::vector<VARIANT> values_;
};

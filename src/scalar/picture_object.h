// The script class "Picture".
#pragma once

#include "frame/interface/tessel_object.h"
#include "frame/member/table.h"

class TCPicture : public vela::member::WithMembers<TCPicture, TesselCObject> {
 public:
  explicit TCPicture(unsigned type_word) { InitTypeIDs(type_word); }

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "Picture"; }
  static const CClassMember* MemberTable();
};

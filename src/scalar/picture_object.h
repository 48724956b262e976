// The script class "Picture".
#pragma once

#include "frame/interface/tessel_object.h"

class TCPicture : public TesselCObject {
 public:
  explicit TCPicture(unsigned type_word) { InitTypeIDs(type_word); }

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "Picture"; }
  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;
};

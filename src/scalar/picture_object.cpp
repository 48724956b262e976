#include "scalar/picture_object.h"

#include "frame/member/table.h"

using vela::member::Unbuilt;

namespace {

const CClassMember kPictureMembers[] = {
    Unbuilt("CreateFromBitmap"),
    Unbuilt("CreateFromMetafile"),
    Unbuilt("CreateFromEnhMetafile"),
    Unbuilt("CreateFromIcon"),
    Unbuilt("Render"),
    Unbuilt("Load"),
    Unbuilt("GetWidth"),
    Unbuilt("GetHeight"),
    {},
};

}  // namespace

const CRuntimeClass* TCPicture::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCPicture", sizeof(TCPicture),
                                           TesselCObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCPicture::FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                          unsigned flags) {
  const CClassMember* row = FindMemberInTable(name, name_hash, kPictureMembers, owner, flags);
  return row != nullptr ? row : TesselCObject::FindMember(name, name_hash, owner, flags);
}

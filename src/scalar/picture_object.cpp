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

const CClassMember* TCPicture::MemberTable() { return kPictureMembers; }

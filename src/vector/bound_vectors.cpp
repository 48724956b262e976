#include "vector/bound_vector.h"

using vela::member::Unbuilt;

namespace vela {

std::initializer_list<CClassMember> DatasetRows() {
  static const std::initializer_list<CClassMember> rows = {
      Unbuilt("Attach"),  Unbuilt("Detach"),         Unbuilt("SetText"),
      Unbuilt("GetText"), Unbuilt("GetStringArray"), Unbuilt("PutStringArray"),
      Unbuilt("GetMask"), Unbuilt("SetMask"),        Unbuilt("GetName"),
      Unbuilt("Append"),  Unbuilt("Update"),         Unbuilt("Create"),
      Unbuilt("Destroy"), Unbuilt("TrimLeft"),       Unbuilt("TrimRight"),
      Unbuilt("GetSize"), Unbuilt("PushUndo"),
  };
  return rows;
}

std::initializer_list<CClassMember> CurveRows() {
  static const std::initializer_list<CClassMember> rows = {
      Unbuilt("HasX"),          Unbuilt("AttachX"),    Unbuilt("Attach"),        Unbuilt("Sort"),
      Unbuilt("GetRectPoints"), Unbuilt("SetXBounds"), Unbuilt("ConstructInit"),
  };
  return rows;
}

std::initializer_list<CClassMember> CategoricalRows() {
  static const std::initializer_list<CClassMember> rows = {Unbuilt("Attach"), Unbuilt("Map"),
                                                           Unbuilt("Group")};
  return rows;
}

}  // namespace vela

namespace {

const CClassMember kComplexDatasetMembers[] = {Unbuilt("Attach"), Unbuilt("Create"), {}};

}  // namespace

const CRuntimeClass* TCOlccomplexVector::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCOlccomplexVector", sizeof(TCOlccomplexVector),
                                           Base::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCOlccomplexVector::MemberTable() { return kComplexDatasetMembers; }

#include "vector/bound_vector.h"

using vela::member::Unbuilt;

namespace vela {

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

const CRuntimeClass* TCOlccomplexVector::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCOlccomplexVector", sizeof(TCOlccomplexVector),
                                           Base::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCOlccomplexVector::MemberTable() {
  static const CClassMember rows[] = {
      Row<&vela::dataset::Attach>("Attach"), Row<&vela::dataset::Create>("Create"), {}};
  return rows;
}

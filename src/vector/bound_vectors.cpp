#include <string>

#include "vector/bound_vector.h"

using vela::member::Unbuilt;

namespace vela {

CStringUTF8 CurveText(const DataBinding& y, const DataBinding& x) {
  // A host has one curve for each pair of columns.
  constexpr int kCurve = 1;
  CStringUTF8 text;
  if (x.Data() != nullptr) text = std::string(x.Data()->GetName().View()) + ", ";
  CStringUTF8 own;
  own.Format("%s(%d:%d-%d)", y.Data()->GetName().c_str(), kCurve, y.LowerBound(),
             static_cast<int>(y.Size()) - 1);
  text += own.View();
  return text;
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

#include "vector/bound_vector.h"

using vela::member::TypeTable;
using vela::member::Unbuilt;

template <class T>
std::initializer_list<CClassMember> TCOVectorBase<T>::MemberRows() {
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

template <class T>
std::initializer_list<CClassMember> TCCurve<T>::MemberRows() {
  static const std::initializer_list<CClassMember> rows = {
      Unbuilt("HasX"),          Unbuilt("AttachX"),    Unbuilt("Attach"),        Unbuilt("Sort"),
      Unbuilt("GetRectPoints"), Unbuilt("SetXBounds"), Unbuilt("ConstructInit"),
  };
  return rows;
}

namespace {

const CClassMember kComplexDatasetMembers[] = {Unbuilt("Attach"), Unbuilt("Create"), {}};

}  // namespace

const CClassMember* TCOlccomplexVector::MemberTable() { return kComplexDatasetMembers; }

template <class T>
std::initializer_list<CClassMember> tcCategoricalData<T>::MemberRows() {
  static const std::initializer_list<CClassMember> rows = {Unbuilt("Attach"), Unbuilt("Map"),
                                                           Unbuilt("Group")};
  return rows;
}

template class TCOVectorBase<char>;
template class TCOVectorBase<unsigned char>;
template class TCOVectorBase<short>;
template class TCOVectorBase<unsigned short>;
template class TCOVectorBase<int>;
template class TCOVectorBase<unsigned>;
template class TCOVectorBase<float>;
template class TCOVectorBase<double>;
template class TCOVectorBase<OneTCcomplex>;
template class TCCurve<char>;
template class TCCurve<unsigned char>;
template class TCCurve<short>;
template class TCCurve<unsigned short>;
template class TCCurve<int>;
template class TCCurve<unsigned>;
template class TCCurve<float>;
template class TCCurve<double>;
template class tcCategoricalData<int>;

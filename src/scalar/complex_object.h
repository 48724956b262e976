// The script class "complex", its complex elements of multi-dimensional arrays, and the points.
#pragma once

#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "frame/numeric_object.h"

namespace vela {

// A complex variable, or a fixed array of them. A member acts on the element that the call's
// indices address; one outside the array is status 2.
class ComplexValue : public TCNumericBase<OneTCcomplex> {
 public:
  using TCNumericBase::TCNumericBase;

  // The conjugate as the result; the object is unchanged. A missing part stays missing.
  int Conjugate(CTCall* call);
  int GetRe(CTCall* call);
  int SetRe(CTCall* call);
  int GetIm(CTCall* call);
  int SetIm(CTCall* call);
  // atan2(im, re) in (-pi, pi]; missing when either part is.
  int GetPhase(CTCall* call);
  int GetAmplitude(CTCall* call);

 private:
  OneTCcomplex& Addressed(member::Arguments& args);
};

}  // namespace vela

class TCcomplex : public vela::member::WithMembers<TCcomplex, vela::ComplexValue> {
 public:
  using WithMembers::WithMembers;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "complex"; }
  static const CClassMember* MemberTable();
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
};

// The complex elements of multi-dimensional arrays: the same value with a table of their own, which
// is the only one searched.
class TClccomplexMD : public vela::member::WithMembers<TClccomplexMD, vela::ComplexValue> {
 public:
  using WithMembers::WithMembers;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "complex"; }
  static const CClassMember* MemberTable();
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
};

// A point variable, or a fixed array of them, with its coordinates as members. "z" is a property in
// the three-dimensional point; elsewhere it is not supported.
template <class T, int N>
class TCPointBase
    : public vela::member::WithMembers<TCPointBase<T, N>, TCNumericBase<CTKPointBase<T, N>>> {
  using Base = vela::member::WithMembers<TCPointBase, TCNumericBase<CTKPointBase<T, N>>>;

 public:
  using Base::Base;

  static const CClassMember* MemberTable() { return vela::member::TypeTable<TCPointBase>::Rows(); }
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }

  int GetX(CTCall* call);
  int SetX(CTCall* call);
  int GetY(CTCall* call);
  int SetY(CTCall* call);
  // Without an argument the result is z; with one, z is set to it.
  int Z(CTCall* call);

  static std::initializer_list<CClassMember> MemberRows();

 private:
  T& Coordinate(vela::member::Arguments& args, int i);
  int GetCoordinate(CTCall* call, int i);
  int SetCoordinate(CTCall* call, int i);
};

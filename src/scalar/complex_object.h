// The script class "complex", its complex elements of multi-dimensional arrays, and the points.
#pragma once

#include "frame/member/arguments.h"
#include "frame/member/table.h"
#include "frame/numeric_object.h"

// A complex variable, or a fixed array of them. A member acts on the element that the call's
// indices address; one outside the array is status 2.
class TCcomplex : public TCNumericBase<OneTCcomplex> {
 public:
  using TCNumericBase<OneTCcomplex>::TCNumericBase;

  const CRuntimeClass* GetRuntimeClass() const override;
  const char* GetTCTypeName() const override { return "complex"; }
  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }

  // The conjugate as the result; the object is unchanged.
  int Conjugate(CTCall* call);
  int GetRe(CTCall* call);
  int SetRe(CTCall* call);
  int GetIm(CTCall* call);
  int SetIm(CTCall* call);
  // atan2(im, re) in (-pi, pi]; missing when either part is.
  int GetPhase(CTCall* call);
  int GetAmplitude(CTCall* call);

 protected:
  OneTCcomplex& Addressed(vela::member::Arguments& args);
};

// The complex elements of multi-dimensional arrays: the same value with a table of their own.
class TClccomplexMD : public TCcomplex {
 public:
  using TCcomplex::TCcomplex;

  const CRuntimeClass* GetRuntimeClass() const override;
  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;
  CScriptVelaObject* CreateCopy() override { return vela::NewCopy(*this); }
};

// A point variable, or a fixed array of them, with its coordinates as members. "z" is a property in
// the three-dimensional point; elsewhere it is not supported.
template <class T, int N>
class TCPointBase : public TCNumericBase<CTKPointBase<T, N>> {
  using Base = TCNumericBase<CTKPointBase<T, N>>;

 public:
  using Base::Base;

  const CClassMember* FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                 unsigned flags) override;
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

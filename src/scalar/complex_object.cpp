#include "scalar/complex_object.h"

#include <cmath>

#include "frame/interface/missing_value.h"

namespace {

using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::Method;
using vela::member::NoArguments;
using vela::member::Property;
using vela::member::Run;
using vela::member::RunGetter;
using vela::member::RunSetter;

const CClassMember kComplexMembers[] = {
    Method("Conjugate", &TCcomplex::Conjugate),
    Property("m_re", &TCcomplex::GetRe, &TCcomplex::SetRe),
    Property("m_im", &TCcomplex::GetIm, &TCcomplex::SetIm),
    Method("GetPhase", &TCcomplex::GetPhase),
    Method("GetAmplitude", &TCcomplex::GetAmplitude),
    {},
};

const CClassMember kComplexMDMembers[] = {
    Method("Get_conj", &TCcomplex::Conjugate),
    Property("m_re", &TCcomplex::GetRe, &TCcomplex::SetRe),
    Property("m_im", &TCcomplex::GetIm, &TCcomplex::SetIm),
    {},
};

double Phase(const OneTCcomplex& z) {
  if (z.m_im == kMissingValue || z.m_re == kMissingValue) return kMissingValue;
  return std::atan2(z.m_im, z.m_re);
}

}  // namespace

const CRuntimeClass* TCcomplex::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCcomplex", sizeof(TCcomplex),
                                           CScriptVelaObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCcomplex::FindMember(const char* name, unsigned name_hash, CTypeBase** owner,
                                          unsigned flags) {
  const CClassMember* row = FindMemberInTable(name, name_hash, kComplexMembers, owner, flags);
  return row != nullptr ? row : CTypeBase::FindMember(name, name_hash, owner, flags);
}

OneTCcomplex& TCcomplex::Addressed(Arguments& args) {
  OneTCcomplex* element = Element(&args.Indices());
  if (element == nullptr) Fail(status::kUnresolved);
  return *element;
}

int TCcomplex::Conjugate(CTCall* call) {
  return Run(call, NoArguments(status::kFailed), [&](Arguments& args) {
    const OneTCcomplex& z = Addressed(args);
    args.Return(OneTCcomplex(z.m_re, -z.m_im));
  });
}

int TCcomplex::GetRe(CTCall* call) {
  return RunGetter(call, [&](Arguments& args) { args.Return(Addressed(args).m_re); });
}

int TCcomplex::SetRe(CTCall* call) {
  return RunSetter(call, [&](Arguments& args) { Addressed(args).m_re = args.Double(0); });
}

int TCcomplex::GetIm(CTCall* call) {
  return RunGetter(call, [&](Arguments& args) { args.Return(Addressed(args).m_im); });
}

int TCcomplex::SetIm(CTCall* call) {
  return RunSetter(call, [&](Arguments& args) { Addressed(args).m_im = args.Double(0); });
}

int TCcomplex::GetPhase(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) { args.Return(Phase(Addressed(args))); });
}

int TCcomplex::GetAmplitude(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(Addressed(args).GetAmplitude()); });
}

const CRuntimeClass* TClccomplexMD::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TClccomplexMD", sizeof(TClccomplexMD),
                                           TCcomplex::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TClccomplexMD::FindMember(const char* name, unsigned name_hash,
                                              CTypeBase** owner, unsigned flags) {
  const CClassMember* row = FindMemberInTable(name, name_hash, kComplexMDMembers, owner, flags);
  return row != nullptr ? row : CTypeBase::FindMember(name, name_hash, owner, flags);
}

#include "scalar/complex_object.h"

#include "frame/interface/missing_value.h"
#include "kernel/complex_parts.h"

namespace {

using vela::member::Arguments;
using vela::member::Fail;
using vela::member::Method;
using vela::member::NoArguments;
using vela::member::Property;
using vela::member::Run;
using vela::member::RunGetter;
using vela::member::RunSetter;

const CClassMember kComplexMembers[] = {
    Method("Conjugate", &vela::ComplexValue::Conjugate),
    Property("m_re", &vela::ComplexValue::GetRe, &vela::ComplexValue::SetRe),
    Property("m_im", &vela::ComplexValue::GetIm, &vela::ComplexValue::SetIm),
    Method("GetPhase", &vela::ComplexValue::GetPhase),
    Method("GetAmplitude", &vela::ComplexValue::GetAmplitude),
    {},
};

const CClassMember kComplexMDMembers[] = {
    Method("Get_conj", &vela::ComplexValue::Conjugate),
    Property("m_re", &vela::ComplexValue::GetRe, &vela::ComplexValue::SetRe),
    Property("m_im", &vela::ComplexValue::GetIm, &vela::ComplexValue::SetIm),
    {},
};

}  // namespace

const CRuntimeClass* TCcomplex::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TCcomplex", sizeof(TCcomplex),
                                           CScriptVelaObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TCcomplex::MemberTable() { return kComplexMembers; }

const CRuntimeClass* TClccomplexMD::GetRuntimeClass() const {
  static const CRuntimeClass runtime_class{"TClccomplexMD", sizeof(TClccomplexMD),
                                           CScriptVelaObject::GetRuntimeClass()};
  return &runtime_class;
}

const CClassMember* TClccomplexMD::MemberTable() { return kComplexMDMembers; }

namespace vela {

OneTCcomplex& ComplexValue::Addressed(Arguments& args) {
  OneTCcomplex* element = Element(&args.Indices());
  if (element == nullptr) Fail(status::kUnresolved);
  return *element;
}

int ComplexValue::Conjugate(CTCall* call) {
  return Run(call, NoArguments(status::kFailed), [&](Arguments& args) {
    const OneTCcomplex& z = Addressed(args);
    args.Return(OneTCcomplex(z.m_re, z.m_im == kMissingValue ? kMissingValue : -z.m_im));
  });
}

int ComplexValue::GetRe(CTCall* call) {
  return RunGetter(call, [&](Arguments& args) { args.Return(Addressed(args).m_re); });
}

int ComplexValue::SetRe(CTCall* call) {
  return RunSetter(call, [&](Arguments& args) { Addressed(args).m_re = args.Double(0); });
}

int ComplexValue::GetIm(CTCall* call) {
  return RunGetter(call, [&](Arguments& args) { args.Return(Addressed(args).m_im); });
}

int ComplexValue::SetIm(CTCall* call) {
  return RunSetter(call, [&](Arguments& args) { Addressed(args).m_im = args.Double(0); });
}

int ComplexValue::GetPhase(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(kernel::Phase(Addressed(args))); });
}

int ComplexValue::GetAmplitude(CTCall* call) {
  return Run(call, NoArguments(),
             [&](Arguments& args) { args.Return(kernel::Amplitude(Addressed(args))); });
}

}  // namespace vela

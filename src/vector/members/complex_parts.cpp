// Members of complex vectors: their parts, and their making from parts.
#include "kernel/complex_parts.h"

#include "frame/container/container_arguments.h"
#include "vector/vector_base.h"

using vela::Layer;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::NoArguments;
using vela::member::Run;
namespace kernel = vela::kernel;

// The members that fill a double vector with part(complexes, doubles): 0, or -1 for a target of
// another type.
template <class Part>
int TCAllVectorNonTemplBase::FillParts(CTCall* call, Part&& part) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const Layer row = AddressedComplex(args);
    const Layer target = vela::RequiredVector(args, 0);
    args.Return(-1);
    if (target.TypeId() != kTypeDouble) return;
    const vela::LayerElements elements(row);
    vela::FillLayer<double>(target, row.Size(), false, [&](std::span<double> parts) {
      part(elements.As<const OneTCcomplex>(), parts);
    });
    args.Return(0);
  });
}

int TCAllVectorNonTemplBase::GetReal(CTCall* call) {
  return FillParts(call, kernel::RealParts<OneTCcomplex>);
}

int TCAllVectorNonTemplBase::GetImaginary(CTCall* call) {
  return FillParts(call, kernel::ImaginaryParts<OneTCcomplex>);
}

int TCAllVectorNonTemplBase::GetAmplitude(CTCall* call) {
  return FillParts(call, kernel::Amplitudes<OneTCcomplex>);
}

int TCAllVectorNonTemplBase::GetPhase(CTCall* call) {
  return FillParts(call, kernel::Phases<OneTCcomplex>);
}

// Conjugate(): in place; 0.
int TCAllVectorNonTemplBase::Conjugate(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    const vela::LayerElements elements(AddressedComplex(args));
    kernel::Conjugate(elements.As<OneTCcomplex>());
    elements.Commit();
    args.Return(0);
  });
}

// MakeComplex(vector re, vector im): the row becomes re + im i; 0, or -1 for vectors of different
// sizes or of other elements than real numbers.
int TCAllVectorNonTemplBase::MakeComplex(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const Layer row = AddressedComplex(args);
    const Layer re = vela::RequiredVector(args, 0);
    const Layer im = vela::RequiredVector(args, 1);
    args.Return(-1);
    const std::size_t size = re.Size();
    if (im.Size() != size || !vela::IsReal(re) || !vela::IsReal(im)) return;
    const vela::LayerValues<double> real(re);
    const vela::LayerValues<double> imaginary(im);
    vela::FillLayer<OneTCcomplex>(row, size, false, [&](std::span<OneTCcomplex> elements) {
      kernel::CombineParts(real.Span(), imaginary.Span(), elements);
    });
    args.Return(0);
  });
}

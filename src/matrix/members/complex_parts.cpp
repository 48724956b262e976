// Members of complex matrices: their parts, and their making from parts.
#include "kernel/complex_parts.h"

#include "frame/container/container_arguments.h"
#include "matrix/matrix_base.h"

using vela::Layer;
using vela::MatrixBlock;
using vela::member::Arguments;
using vela::member::Exactly;
using vela::member::Fail;
using vela::member::NoArguments;
using vela::member::Run;
namespace kernel = vela::kernel;

namespace {

std::span<OneTCcomplex> ComplexValues(const MatrixBlock& block) {
  if (block.Elements().type_id != kTypeComplex) Fail(status::kUnsupported);
  return block.Elements().As<OneTCcomplex>();
}

}  // namespace

// The members that fill a double matrix with part(complexes, doubles): 0, or -1 for a result of
// another type.
template <class Part>
int TCAllMatrixNonTemplBase::FillParts(CTCall* call, Part&& part) {
  return Run(call, Exactly(1), [&](Arguments& args) {
    const View view = AddressedView(args);
    const std::span<const OneTCcomplex> values = ComplexValues(*view);
    const Layer result = vela::RequiredMatrix(args, 0);
    if (result.TypeId() != kTypeDouble) return args.Return(-1);
    vela::FillMatrix(result, kTypeDouble, view->Shape(), false,
                     [&](MatrixBlock& out) { part(values, out.As<double>().Values()); });
    args.Return(0);
  });
}

int TCAllMatrixNonTemplBase::GetReal(CTCall* call) {
  return FillParts(call, kernel::RealParts<OneTCcomplex>);
}

int TCAllMatrixNonTemplBase::GetImaginary(CTCall* call) {
  return FillParts(call, kernel::ImaginaryParts<OneTCcomplex>);
}

int TCAllMatrixNonTemplBase::GetAmplitude(CTCall* call) {
  return FillParts(call, kernel::Amplitudes<OneTCcomplex>);
}

int TCAllMatrixNonTemplBase::GetPhase(CTCall* call) {
  return FillParts(call, kernel::Phases<OneTCcomplex>);
}

// Conjugate(): in place; 0.
int TCAllMatrixNonTemplBase::Conjugate(CTCall* call) {
  return Run(call, NoArguments(), [&](Arguments& args) {
    const View view = AddressedView(args);
    kernel::Conjugate(ComplexValues(*view));
    Update(view.layer.number);
    args.Return(0);
  });
}

// MakeComplex(matrix re, matrix im): this matrix becomes re + im i; 0, or -1 for matrices of
// different shapes or of other elements than real numbers.
int TCAllMatrixNonTemplBase::MakeComplex(CTCall* call) {
  return Run(call, Exactly(2), [&](Arguments& args) {
    const View view = AddressedView(args);
    ComplexValues(*view);
    const Layer re = vela::RequiredMatrix(args, 0);
    const Layer im = vela::RequiredMatrix(args, 1);
    if (re.Shape() != im.Shape() || !vela::IsReal(re) || !vela::IsReal(im)) return args.Return(-1);
    const vela::LayerValues<double> real(re);
    const vela::LayerValues<double> imaginary(im);
    vela::FillMatrix(view.layer, kTypeComplex, re.Shape(), false, [&](MatrixBlock& out) {
      kernel::CombineParts(real.Span(), imaginary.Span(), out.As<OneTCcomplex>().Values());
    });
    args.Return(0);
  });
}

// Members of complex vectors: their parts, and their making from parts.
#pragma once

#include <cmath>

#include "vector/typed_vector.h"

template <class T>
template <class Part>
int TCAllVectorsBase<T>::FillParts(CTCall* call, Part&& part) {
  using namespace vela::member;
  if constexpr (!vela::ComplexElement<T>) {
    return status::kUnsupported;
  } else {
    return Run(call, Exactly(1), [&](Arguments& args) {
      const RowAccess<T> elements(*this, this->Row(args));
      const vela::VectorArgument target = vela::RequiredVector(args, 0);
      auto* doubles = vela::TypedVector<double>(target);
      args.Return(-1);
      if (doubles == nullptr) return;
      const auto size = static_cast<std::int64_t>(elements.Elements().size());
      Check(doubles->RawResize(target.row, size));
      RowAccess<double> parts(*doubles, target.row);
      for (std::size_t i = 0; i < parts.Elements().size(); ++i) {
        parts.Elements()[i] = part(elements.Elements()[i]);
      }
      Check(parts.Commit());
      args.Return(0);
    });
  }
}

namespace vela {

// A quantity of the whole value is missing when either part is.
template <class Quantity>
auto UnlessMissing(Quantity&& quantity) {
  return [quantity](const OneTCcomplex& z) {
    return z.m_re == kMissingValue || z.m_im == kMissingValue ? kMissingValue : quantity(z);
  };
}

}  // namespace vela

template <class T>
int TCAllVectorsBase<T>::GetReal(CTCall* call) {
  return FillParts(call, [](const OneTCcomplex& z) { return z.m_re; });
}

template <class T>
int TCAllVectorsBase<T>::GetImaginary(CTCall* call) {
  return FillParts(call, [](const OneTCcomplex& z) { return z.m_im; });
}

template <class T>
int TCAllVectorsBase<T>::GetAmplitude(CTCall* call) {
  return FillParts(call,
                   vela::UnlessMissing([](const OneTCcomplex& z) { return z.GetAmplitude(); }));
}

template <class T>
int TCAllVectorsBase<T>::GetPhase(CTCall* call) {
  return FillParts(
      call, vela::UnlessMissing([](const OneTCcomplex& z) { return std::atan2(z.m_im, z.m_re); }));
}

template <class T>
int TCAllVectorsBase<T>::Conjugate(CTCall* call) {
  using namespace vela::member;
  if constexpr (!vela::ComplexElement<T>) {
    return status::kUnsupported;
  } else {
    return Run(call, NoArguments(), [&](Arguments& args) {
      RowAccess<T> elements(*this, this->Row(args));
      for (OneTCcomplex& z : elements.Elements()) {
        if (z.m_im != kMissingValue) z.m_im = -z.m_im;
      }
      Check(elements.Commit());
      args.Return(0);
    });
  }
}

template <class T>
int TCAllVectorsBase<T>::MakeComplex(CTCall* call) {
  using namespace vela::member;
  if constexpr (!vela::ComplexElement<T>) {
    return status::kUnsupported;
  } else {
    return Run(call, Exactly(2), [&](Arguments& args) {
      const int row = this->Row(args);
      const vela::VectorArgument re = vela::RequiredVector(args, 0);
      const vela::VectorArgument im = vela::RequiredVector(args, 1);
      args.Return(-1);
      const std::size_t size = re.Size();
      if (im.Size() != size || !re.IsReal() || !im.IsReal()) return;
      const vela::RowElements re_run(re);
      const vela::RowElements im_run(im);
      const vela::ElementsAs<double> real(re_run.Run());
      const vela::ElementsAs<double> imaginary(im_run.Run());
      Check(this->RawResize(row, static_cast<std::int64_t>(size)));
      RowAccess<T> elements(*this, row);
      for (std::size_t i = 0; i < size; ++i) {
        elements.Elements()[i] = {real.Span()[i], imaginary.Span()[i]};
      }
      Check(elements.Commit());
      args.Return(0);
    });
  }
}

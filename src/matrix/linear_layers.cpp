#include "matrix/linear_layers.h"

#include <complex>

#include "kernel/linear_algebra.h"

namespace vela {
namespace {

using kernel::MatrixSpan;

// What the kernels call an element type.
template <class T>
struct KernelTypeOf {
  using Type = T;
};
template <>
struct KernelTypeOf<OneTCcomplex> {
  using Type = std::complex<double>;
};
template <class T>
using KernelType = typename KernelTypeOf<T>::Type;
static_assert(sizeof(OneTCcomplex) == sizeof(std::complex<double>));

// The type that elements of a type are inverted in.
unsigned FieldType(unsigned type_id) {
  return type_id == kTypeFloat || type_id == kTypeComplex ? type_id : unsigned{kTypeDouble};
}

template <class F>
auto WithFieldType(unsigned type_id, F&& f) {
  switch (type_id) {
    case kTypeFloat:
      return f.template operator()<float>();
    case kTypeComplex:
      return f.template operator()<std::complex<double>>();
    default:
      return f.template operator()<double>();
  }
}

template <class T, class Span>
auto MatrixOf(const Span& elements, const LayerShape& shape) {
  using Memory = std::conditional_t<std::is_same_v<Span, ElementSpan>, T, const T>;
  return MatrixSpan<Memory>(static_cast<Memory*>(elements.data),
                            static_cast<std::size_t>(shape.rows),
                            static_cast<std::size_t>(shape.cols));
}

// A result apart from its operands, which takes the layer's place once it is there.
class Product {
 public:
  Product(unsigned type_id, const LayerShape& shape)
      : shape_(shape), memory_(type_id, static_cast<std::size_t>(shape.Size())) {}
  template <class T>
  MatrixSpan<T> As() const {
    return MatrixOf<T>(memory_.Span(), shape_);
  }
  void StoreIn(const Layer& x) const { StoreResult(x, shape_, memory_.Span()); }

 private:
  LayerShape shape_;
  ElementMemory memory_;
};

}  // namespace

int MultiplyLayer(const Layer& x, const Layer& y) {
  const LayerShape left = x.Shape();
  const LayerShape right = y.Shape();
  if (left.cols != right.rows) return status::kFailed;
  const unsigned type_id = x.TypeId();
  const LayerShape shape{left.rows, right.cols};
  if (const int error = CheckShape(type_id, shape); error != status::kOk) return error;
  const LayerElements factors(x);
  const ConvertedElements others(y, type_id);
  const Product product(type_id, shape);
  VisitElementType(type_id, [&]<class T>() {
    if constexpr (DatasetElement<T>) {
      using K = KernelType<T>;
      kernel::Multiply<K>(MatrixOf<K>(ConstElementSpan(factors.Span()), left),
                          MatrixOf<K>(others.Span(), right), product.As<K>());
    }
  });
  product.StoreIn(x);
  return status::kOk;
}

int DivideLayer(const Layer& x, const Layer& y) {
  const LayerShape left = x.Shape();
  const LayerShape right = y.Shape();
  if (right.rows != right.cols || left.cols != right.rows) return status::kFailed;
  const unsigned type_id = FieldType(x.TypeId());
  const ConvertedElements factors(x, type_id);
  const ConvertedElements divisors(y, type_id);
  const Product quotient(type_id, left);
  const bool is_solved = WithFieldType(type_id, [&]<class T>() {
    return kernel::SolveRight<T>(MatrixOf<T>(factors.Span(), left),
                                 MatrixOf<T>(divisors.Span(), right), quotient.As<T>());
  });
  if (!is_solved) return status::kFailed;
  quotient.StoreIn(x);
  return status::kOk;
}

int RaiseLayer(const Layer& x, std::int64_t n) {
  const LayerShape shape = x.Shape();
  if (shape.rows != shape.cols) return status::kFailed;
  const unsigned type_id = FieldType(x.TypeId());
  const Product power(type_id, shape);
  const bool exists = WithFieldType(type_id, [&]<class T>() {
    const MatrixSpan<T> elements = power.As<T>();
    member::Check(
        x.container->ReadElements(x.number, 0, {type_id, elements.data, elements.Size()}));
    return kernel::Power<T>(elements, n);
  });
  if (!exists) return status::kFailed;
  power.StoreIn(x);
  return status::kOk;
}

bool HasInverse(unsigned type_id) {
  return type_id == kTypeFloat || type_id == kTypeDouble || type_id == kTypeComplex;
}

bool InvertBlock(const MatrixBlock& block) {
  const ElementSpan elements = block.Elements();
  return WithFieldType(elements.type_id, [&]<class T>() {
    return kernel::Invert<T>(MatrixOf<T>(elements, block.Shape()));
  });
}

}  // namespace vela

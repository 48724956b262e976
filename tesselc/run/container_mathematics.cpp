#include "tesselc/run/container_mathematics.h"

#include <span>

#include "frame/interface/missing_value.h"
#include "frame/interface/script_object.h"
#include "frame/interface/status.h"
#include "tesselc/run/objects.h"
#include "tesselc/run/operators.h"
#include "tesselc/run/script_error.h"

namespace tesselc {
namespace {

// The elements of a row or layer, lent by the object; written back at the end where they are a
// copy.
template <class T>
class LentElements {
 public:
  LentElements(const ObjectValue& value, const SourceRange& where) : value_(value) {
    CheckStatus(value_.object->GetBufferMSO(value_.At(), &buffer_), "read the elements", where);
    size_ = value_.object->GetBufferSize(value_.At()) / sizeof(T);
  }
  ~LentElements() { value_.object->ReleaseBufferMSO(value_.At(), buffer_); }
  LentElements(const LentElements&) = delete;
  LentElements& operator=(const LentElements&) = delete;
  std::span<T> Get() const { return {static_cast<T*>(buffer_), size_}; }

 private:
  const ObjectValue& value_;
  void* buffer_ = nullptr;
  std::size_t size_ = 0;
};

double Widen(double x) { return x; }
// A float is never missing.
double Widen(float x) { return x; }

struct OfDoubles {
  double (*function)(double);
  template <class T>
  void operator()(T& x) const {
    const double value = Widen(x);
    if (!IsMissing(value)) x = static_cast<T>(function(value));
  }
};

struct OfComplex {
  OneTCcomplex (*function)(const OneTCcomplex&);
  void operator()(OneTCcomplex& z) const {
    if (IsMissing(z.m_re) || IsMissing(z.m_im)) {
      z = OneTCcomplex(kMissingValue, kMissingValue);
    } else {
      z = function(z);
    }
  }
};

template <class T, class F>
class MathOnContainer final : public Expr<MathOnContainer<T, F>, ObjectValue> {
 public:
  MathOnContainer(F function, ValuePtr<ObjectValue> container, SourceRange where)
      : function_(function), container_(std::move(container)), where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    ObjectValue value = container_->Eval(frame);
    const LentElements<T> elements(value, where_);
    for (T& element : elements.Get()) function_(element);
    return value;
  }

 private:
  F function_;
  ValuePtr<ObjectValue> container_;
  SourceRange where_;
};

template <class T, class F>
NodePtr MakeOn(F function, NodePtr container, const SourceRange& where) {
  return std::make_unique<MathOnContainer<T, F>>(function, As<ObjectValue>(std::move(container)),
                                                 where);
}

template <class T, class Other>
class MathOnTwo final : public Expr<MathOnTwo<T, Other>, ObjectValue> {
 public:
  MathOnTwo(double (*function)(double, double), MathTarget target, ValuePtr<ObjectValue> container,
            ValuePtr<Other> other, SourceRange where)
      : function_(function),
        target_(target),
        container_(std::move(container)),
        other_(std::move(other)),
        where_(where) {}
  ObjectValue Eval(Frame& frame) override {
    ObjectValue value = container_->Eval(frame);
    const Other other = other_->Eval(frame);
    const LentElements<T> elements(value, where_);
    if constexpr (std::is_same_v<Other, double>) {
      for (T& x : elements.Get()) Apply(x, other);
    } else {
      const LentElements<T> others(other, where_);
      if (!HaveOneShape(value, other)) {
        throw ScriptError(where_, status::kFailed, "the two have different shapes");
      }
      for (std::size_t i = 0; i < elements.Get().size(); ++i) {
        Apply(elements.Get()[i], Widen(others.Get()[i]));
      }
    }
    return value;
  }

 private:
  void Apply(T& x, double other) const {
    x = static_cast<T>(target_ == MathTarget::kFirst ? Calculate(Widen(x), other, function_)
                                                     : Calculate(other, Widen(x), function_));
  }
  static bool HaveOneShape(const ObjectValue& a, const ObjectValue& b) {
    const auto shape = [](const ObjectValue& value) {
      int rows = 0, cols = 0;
      value.object->GetMatrixDimensions(&rows, &cols, value.At());
      return std::pair(rows, cols);
    };
    return shape(a) == shape(b) &&
           a.object->GetBufferSize(a.At()) == b.object->GetBufferSize(b.At());
  }

  double (*function_)(double, double);
  MathTarget target_;
  ValuePtr<ObjectValue> container_;
  ValuePtr<Other> other_;
  SourceRange where_;
};

}  // namespace

NodePtr MakeMathOnContainer(const MathFunction& function, TypeName element, NodePtr container,
                            SourceRange where) {
  switch (element) {
    case TypeName::kFloat:
      return MakeOn<float>(OfDoubles{function.unary}, std::move(container), where);
    case TypeName::kDouble:
      return MakeOn<double>(OfDoubles{function.unary}, std::move(container), where);
    default:
      return MakeOn<OneTCcomplex>(OfComplex{function.complex_unary}, std::move(container), where);
  }
}

NodePtr MakeMathOnContainers(const MathFunction& function, TypeName element, MathTarget target,
                             NodePtr container, Carrier carrier, NodePtr other, SourceRange where) {
  const auto make = [&]<class T, class Other>() -> NodePtr {
    return std::make_unique<MathOnTwo<T, Other>>(function.binary, target,
                                                 As<ObjectValue>(std::move(container)),
                                                 As<Other>(std::move(other)), where);
  };
  const bool is_object = carrier == kObjectCarrier;
  if (element == TypeName::kFloat) {
    return is_object ? make.operator()<float, ObjectValue>() : make.operator()<float, double>();
  }
  return is_object ? make.operator()<double, ObjectValue>() : make.operator()<double, double>();
}

}  // namespace tesselc

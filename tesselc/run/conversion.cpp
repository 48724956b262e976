#include <limits>
#include <utility>

#include "frame/interface/missing_value.h"
#include "frame/interface/status.h"
#include "tesselc/run/arithmetic.h"
#include "tesselc/run/number_conversion.h"
#include "tesselc/run/number_types.h"
#include "tesselc/run/operands.h"
#include "tesselc/run/script_error.h"

namespace tesselc {
namespace {

template <class From, class To, class Operand>
class Convert final : public ValueNode<To> {
 public:
  explicit Convert(Operand operand) : operand_(std::move(operand)) {}
  To Eval(Frame& frame) override { return ConvertScalar<To>(operand_.Get(frame)); }

 private:
  Operand operand_;
};

template <class From, class To>
NodePtr ConvertNode(NodePtr operand) {
  using Operand = AnyOperand<From>;
  return NodePtr(new Convert<From, To, Operand>(Operand{As<From>(std::move(operand))}));
}

// A type that holds every value of T and converts as T does. Numbers convert in two steps, through
// it, so that there is a node for each type and step, not for each pair of types.
template <class T>
using Widest =
    std::conditional_t<!std::is_arithmetic_v<T> || std::is_same_v<T, std::uint64_t>, T,
                       std::conditional_t<std::is_floating_point_v<T>, double, std::int64_t>>;

template <class From, class To>
inline constexpr bool kConvertible =
    (std::is_arithmetic_v<From> || std::is_same_v<From, OneTCcomplex>)
        ? (std::is_arithmetic_v<To> || std::is_same_v<To, OneTCcomplex>)
        : !(std::is_arithmetic_v<To> || std::is_same_v<To, OneTCcomplex>);

template <class From, class To>
NodePtr ConvertOf(NodePtr operand) {
  using Wide = Widest<From>;
  if constexpr (!kConvertible<From, To>) {
    return nullptr;
  } else if constexpr (std::is_same_v<From, int> && std::is_same_v<To, double>) {
    return WithLeftOperand<From>(std::move(operand), [](auto o) {
      return NodePtr(new Convert<From, To, decltype(o)>(std::move(o)));
    });
  } else if constexpr (std::is_same_v<Wide, From> || std::is_same_v<Wide, To> ||
                       std::is_same_v<From, int>) {
    return ConvertNode<From, To>(std::move(operand));
  } else {
    return ConvertNode<Wide, To>(ConvertNode<From, Wide>(std::move(operand)));
  }
}

// A constant of a type of literals is converted here and now.
template <class From, class To>
NodePtr ConvertConstant(Node* operand) {
  if constexpr (kConvertible<From, To>) {
    if (auto* constant = dynamic_cast<Constant<From>*>(operand)) {
      return MakeConstant<To>(ConvertScalar<To>(constant->value()));
    }
  }
  return nullptr;
}

template <class From, class To>
class Saturate final : public ValueNode<To> {
 public:
  explicit Saturate(ValuePtr<From> operand) : operand_(std::move(operand)) {}
  To Eval(Frame& frame) override {
    using Limits = std::numeric_limits<To>;
    const From value = operand_->Eval(frame);
    if (value > 0 &&
        static_cast<std::uint64_t>(value) > static_cast<std::uint64_t>(Limits::max())) {
      return Limits::max();
    }
    if constexpr (std::is_signed_v<From>) {
      if (value < 0 && value < static_cast<std::int64_t>(Limits::min())) return Limits::min();
    }
    return static_cast<To>(value);
  }

 private:
  ValuePtr<From> operand_;
};

class ToIndex final : public ValueNode<std::int64_t> {
 public:
  ToIndex(ValuePtr<double> operand, SourceRange where)
      : operand_(std::move(operand)), where_(where) {}
  std::int64_t Eval(Frame& frame) override {
    const double value = operand_->Eval(frame);
    if (std::isnan(value) || value == kMissingValue) {
      throw ScriptError(
          where_, status::kOutOfRange,
          std::string("an index cannot be ") + (value == kMissingValue ? kMissingText : "NAN"));
    }
    return ConvertScalar<std::int64_t>(value);
  }

 private:
  ValuePtr<double> operand_;
  SourceRange where_;
};

class ComplexFromParts final : public ValueNode<OneTCcomplex> {
 public:
  explicit ComplexFromParts(std::vector<ValuePtr<double>> parts) : parts_(std::move(parts)) {}
  OneTCcomplex Eval(Frame& frame) override {
    const double re = !parts_.empty() ? parts_[0]->Eval(frame) : 0;
    return {re, parts_.size() > 1 ? parts_[1]->Eval(frame) : 0};
  }

 private:
  std::vector<ValuePtr<double>> parts_;
};

template <class P>
class PointFromParts final : public ValueNode<P> {
 public:
  explicit PointFromParts(std::vector<ValuePtr<double>> parts) : parts_(std::move(parts)) {}
  P Eval(Frame& frame) override {
    P point;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      point[i] = ConvertScalar<typename P::Coordinate>(parts_[i]->Eval(frame));
    }
    return point;
  }

 private:
  std::vector<ValuePtr<double>> parts_;
};

}  // namespace

NodePtr MakeConversion(TypeName from, TypeName to, NodePtr operand) {
  if (from == to) return operand;
  return WithScalar(from, [&](auto f) {
    return WithScalar(to, [&](auto t) {
      using From = typename decltype(f)::type;
      using To = typename decltype(t)::type;
      if (NodePtr constant = ConvertConstant<From, To>(operand.get())) return constant;
      return ConvertOf<From, To>(std::move(operand));
    });
  });
}

NodePtr MakeSaturating(TypeName from, TypeName to, NodePtr operand) {
  if (from == to || !IsInteger(from) || !IsInteger(to)) {
    return MakeConversion(from, to, std::move(operand));
  }
  return WithNumber(to, [&](auto t) -> NodePtr {
    using To = typename decltype(t)::type;
    if constexpr (!std::is_integral_v<To>) {
      return nullptr;
    } else if (from == TypeName::kUint64) {
      return std::make_unique<Saturate<std::uint64_t, To>>(As<std::uint64_t>(std::move(operand)));
    } else {
      operand = MakeConversion(from, TypeName::kInt64, std::move(operand));
      return std::make_unique<Saturate<std::int64_t, To>>(As<std::int64_t>(std::move(operand)));
    }
  });
}

NodePtr MakeIndex(NodePtr operand, SourceRange where) {
  return std::make_unique<ToIndex>(As<double>(std::move(operand)), where);
}

NodePtr MakeFromParts(TypeName type, std::vector<NodePtr> parts) {
  std::vector<ValuePtr<double>> numbers;
  for (NodePtr& part : parts) numbers.push_back(As<double>(std::move(part)));
  switch (type) {
    case TypeName::kPoint:
      return std::make_unique<PointFromParts<PointInt>>(std::move(numbers));
    case TypeName::kFpoint:
      return std::make_unique<PointFromParts<PointDouble>>(std::move(numbers));
    case TypeName::kFpoint3d:
      return std::make_unique<PointFromParts<Point3D>>(std::move(numbers));
    default:
      return std::make_unique<ComplexFromParts>(std::move(numbers));
  }
}

}  // namespace tesselc

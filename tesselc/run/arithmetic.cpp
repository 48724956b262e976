#include "tesselc/run/arithmetic.h"

#include <cmath>
#include <limits>

#include "frame/interface/operations.h"
#include "frame/interface/script_object.h"
#include "frame/interface/status.h"
#include "tesselc/run/bindings.h"
#include "tesselc/run/number_types.h"
#include "tesselc/run/objects.h"
#include "tesselc/run/operands.h"
#include "tesselc/run/operators.h"
#include "tesselc/run/script_error.h"

namespace tesselc {
namespace {

// An operator on two operands of T whose value is a Result.
template <class T, class Result, class Op, class Left, class Right>
class BinaryNode final : public ValueNode<Result> {
 public:
  BinaryNode(Left left, Right right) : left_(std::move(left)), right_(std::move(right)) {}
  Result Eval(Frame& frame) override {
    const T left = left_.Get(frame);
    return Op::template Apply<T>(left, right_.Get(frame));
  }

 private:
  Left left_;
  Right right_;
};

template <class T, class Result, class Op>
NodePtr MakeBinary(NodePtr left, NodePtr right) {
  return WithLeftOperand<T>(std::move(left), [&](auto l) {
    return WithRightOperand<T>(std::move(right), [&](auto r) {
      using Node = BinaryNode<T, Result, Op, decltype(l), decltype(r)>;
      return NodePtr(new Node(std::move(l), std::move(r)));
    });
  });
}

// For the operators whose work outweighs reading their operands.
template <class T, class Op>
NodePtr MakePlainBinary(NodePtr left, NodePtr right) {
  using Operand = AnyOperand<T>;
  using Node = BinaryNode<T, T, Op, Operand, Operand>;
  return NodePtr(new Node(Operand{As<T>(std::move(left))}, Operand{As<T>(std::move(right))}));
}

struct DivideOp {
  template <class T>
  static T Apply(T a, T b) {
    return Calculate(a, b, [](auto x, auto y) { return x / y; });
  }
};
struct RemainderOp {
  template <class T>
  static T Apply(T a, T b) {
    return Calculate(a, b, [](auto x, auto y) { return std::fmod(x, y); });
  }
};
struct BitAndOp {
  template <class T>
  static T Apply(T a, T b) {
    return a & b;
  }
};
struct BitOrOp {
  template <class T>
  static T Apply(T a, T b) {
    return a | b;
  }
};

// The quotient or remainder of integers; dividing the smallest one by -1 wraps.
template <class T, bool kRemainder>
class IntegerDivision final : public ValueNode<T> {
 public:
  IntegerDivision(ValuePtr<T> left, ValuePtr<T> right, SourceRange where)
      : left_(std::move(left)), right_(std::move(right)), where_(where) {}
  T Eval(Frame& frame) override {
    const T left = left_->Eval(frame);
    const T right = right_->Eval(frame);
    if (right == 0) throw ScriptError(where_, status::kFailed, "division by zero");
    if constexpr (std::is_signed_v<T>) {
      if (right == -1) return kRemainder ? 0 : SubtractOp::Apply<T>(0, left);
    }
    return kRemainder ? left % right : left / right;
  }

 private:
  ValuePtr<T> left_, right_;
  SourceRange where_;
};

template <class T, bool kRemainder>
NodePtr MakeDivisionOf(NodePtr left, NodePtr right, SourceRange where) {
  if constexpr (std::is_floating_point_v<T>) {
    if constexpr (kRemainder) {
      return MakePlainBinary<T, RemainderOp>(std::move(left), std::move(right));
    } else {
      return MakeBinary<T, T, DivideOp>(std::move(left), std::move(right));
    }
  } else {
    return std::make_unique<IntegerDivision<T, kRemainder>>(As<T>(std::move(left)),
                                                            As<T>(std::move(right)), where);
  }
}

template <class T, class Op>
NodePtr MakeBitsOf(NodePtr left, NodePtr right) {
  if constexpr (std::is_integral_v<T>) {
    return MakePlainBinary<T, Op>(std::move(left), std::move(right));
  } else {
    return nullptr;
  }
}

template <class T>
NodePtr MakeOrderOf(BinaryOperator op, NodePtr left, NodePtr right) {
  switch (op) {
    case BinaryOperator::kLess:
      return MakeBinary<T, int, LessOp>(std::move(left), std::move(right));
    case BinaryOperator::kLessEqual:
      return MakeBinary<T, int, LessEqualOp>(std::move(left), std::move(right));
    case BinaryOperator::kGreater:
      return MakeBinary<T, int, GreaterOp>(std::move(left), std::move(right));
    default:
      return MakeBinary<T, int, GreaterEqualOp>(std::move(left), std::move(right));
  }
}

template <class T>
class Shift final : public ValueNode<T> {
 public:
  Shift(bool to_left, ValuePtr<T> left, ValuePtr<std::int64_t> right, SourceRange where)
      : to_left_(to_left), left_(std::move(left)), right_(std::move(right)), where_(where) {}
  T Eval(Frame& frame) override {
    constexpr int kWidth = sizeof(T) * 8;
    const T left = left_->Eval(frame);
    const std::int64_t count = right_->Eval(frame);
    if (count < 0 || count >= kWidth) {
      throw ScriptError(
          where_, status::kFailed,
          "shift by " + std::to_string(count) + " is outside 0 .. " + std::to_string(kWidth - 1));
    }
    if (to_left_) return static_cast<T>(static_cast<std::make_unsigned_t<T>>(left) << count);
    return left >> count;
  }

 private:
  bool to_left_;
  ValuePtr<T> left_;
  ValuePtr<std::int64_t> right_;
  SourceRange where_;
};

class Power final : public ValueNode<double> {
 public:
  Power(PowerFunction power, ValuePtr<double> left, ValuePtr<double> right)
      : power_(power), left_(std::move(left)), right_(std::move(right)) {}
  double Eval(Frame& frame) override {
    const double left = left_->Eval(frame);
    return Calculate(left, right_->Eval(frame), power_);
  }

 private:
  PowerFunction power_;
  ValuePtr<double> left_, right_;
};

bool IsFinite(const OneTCcomplex& z) { return std::isfinite(z.m_re) && std::isfinite(z.m_im); }

// What is finite is computed here; the library's complex object knows the rules for the rest.
class ComplexArithmetic final : public ValueNode<OneTCcomplex> {
 public:
  ComplexArithmetic(unsigned op, ValuePtr<OneTCcomplex> left, ValuePtr<OneTCcomplex> right,
                    SourceRange where)
      : op_(op), left_(std::move(left)), right_(std::move(right)), where_(where) {}
  OneTCcomplex Eval(Frame& frame) override {
    const OneTCcomplex left = left_->Eval(frame);
    const OneTCcomplex right = right_->Eval(frame);
    if (IsFinite(left) && IsFinite(right) && !AnyMissing(left, right)) {
      const OneTCcomplex result = Compute(left, right);
      // A limit below the largest number: beyond it the library looks closer.
      constexpr double kLimit = 1e150;
      if (std::fabs(result.m_re) < kLimit && std::fabs(result.m_im) < kLimit) return result;
    }
    OneTCcomplex result = left;
    Passed passed;
    CScriptVelaObject* object = passed.BindProxy(*frame.run, TypeName::kComplex, &result, where_);
    const auto operand = tagMSOOBJVECT::Plain(right, kTypeComplex);
    CheckStatus(object->Operate2(nullptr, op_ | operation::kPlainOperand, operand, 0), "compute",
                where_);
    return result;
  }

 private:
  OneTCcomplex Compute(const OneTCcomplex& a, const OneTCcomplex& b) const {
    switch (op_) {
      case operation::kAdd:
        return a + b;
      case operation::kSubtract:
        return a - b;
      case operation::kMultiply:
        return a * b;
      case operation::kDivide:
        return a / b;
      default:
        return a ^ b;
    }
  }

  unsigned op_;
  ValuePtr<OneTCcomplex> left_, right_;
  SourceRange where_;
};

template <class Op>
struct Coordinatewise {
  template <class P>
  static P Apply(const P& a, const P& b) {
    P result;
    for (std::size_t i = 0; i < P::kDimensions; ++i) {
      result[i] = Op::template Apply<typename P::Coordinate>(a[i], b[i]);
    }
    return result;
  }
};

// A node of one operand whose value a stateless function gives.
template <class From, class To, class Function>
class UnaryNode final : public ValueNode<To> {
 public:
  explicit UnaryNode(ValuePtr<From> operand) : operand_(std::move(operand)) {}
  To Eval(Frame& frame) override { return Function::Apply(operand_->Eval(frame)); }

 private:
  ValuePtr<From> operand_;
};

template <class From, class To, class Function>
NodePtr MakeUnary(NodePtr operand) {
  return NodePtr(new UnaryNode<From, To, Function>(As<From>(std::move(operand))));
}

struct NegateFunction {
  template <class T>
  static T Apply(const T& a) {
    if constexpr (std::is_integral_v<T>) {
      return SubtractOp::Apply<T>(0, a);
    } else if constexpr (std::is_same_v<T, OneTCcomplex>) {
      return AnyMissing(a, a) ? OneTCcomplex(kMissingValue, kMissingValue) : -a;
    } else {
      return AnyMissing(a, a) ? a : -a;
    }
  }
};
struct ComplementFunction {
  template <class T>
  static T Apply(T a) {
    return ~a;
  }
};
struct TruthFunction {
  template <class T>
  static int Apply(const T& a) {
    return a != T{};
  }
};
struct NotFunction {
  static int Apply(int a) { return a == 0; }
};

// && and ||: the second operand is evaluated only where it decides.
template <bool kAnd>
class Logical final : public ValueNode<int> {
 public:
  Logical(ValuePtr<int> left, ValuePtr<int> right)
      : left_(std::move(left)), right_(std::move(right)) {}
  int Eval(Frame& frame) override {
    const bool left = left_->Eval(frame) != 0;
    return left == kAnd ? right_->Eval(frame) != 0 : left;
  }

 private:
  ValuePtr<int> left_, right_;
};

}  // namespace

NodePtr MakeArithmetic(BinaryOperator op, TypeName type, NodePtr left, NodePtr right,
                       SourceRange where) {
  return WithArithmetic(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    switch (op) {
      case BinaryOperator::kAdd:
        return MakeBinary<T, T, AddOp>(std::move(left), std::move(right));
      case BinaryOperator::kSubtract:
        return MakeBinary<T, T, SubtractOp>(std::move(left), std::move(right));
      case BinaryOperator::kMultiply:
        return MakeBinary<T, T, MultiplyOp>(std::move(left), std::move(right));
      case BinaryOperator::kDivide:
        return MakeDivisionOf<T, false>(std::move(left), std::move(right), where);
      case BinaryOperator::kRemainder:
        return MakeDivisionOf<T, true>(std::move(left), std::move(right), where);
      case BinaryOperator::kBitAnd:
        return MakeBitsOf<T, BitAndOp>(std::move(left), std::move(right));
      case BinaryOperator::kBitOr:
        return MakeBitsOf<T, BitOrOp>(std::move(left), std::move(right));
      default:
        return nullptr;
    }
  });
}

NodePtr MakeComparison(BinaryOperator op, TypeName type, NodePtr left, NodePtr right) {
  const auto equality = [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    if (op == BinaryOperator::kEqual) {
      return MakeBinary<T, int, EqualOp>(std::move(left), std::move(right));
    }
    return MakeBinary<T, int, NotEqualOp>(std::move(left), std::move(right));
  };
  if (op == BinaryOperator::kEqual || op == BinaryOperator::kNotEqual) {
    if (IsNumber(type)) return WithArithmetic(type, equality);
    return WithScalar(type, equality);
  }
  if (type == TypeName::kComplex) {
    return MakeOrderOf<OneTCcomplex>(op, std::move(left), std::move(right));
  }
  return WithArithmetic(type, [&](auto t) {
    return MakeOrderOf<typename decltype(t)::type>(op, std::move(left), std::move(right));
  });
}

NodePtr MakePower(PowerFunction power, NodePtr left, NodePtr right) {
  return std::make_unique<Power>(power, As<double>(std::move(left)), As<double>(std::move(right)));
}

NodePtr MakeShift(BinaryOperator op, TypeName type, NodePtr left, NodePtr right,
                  SourceRange where) {
  return WithArithmetic(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    if constexpr (std::is_integral_v<T>) {
      return std::make_unique<Shift<T>>(op == BinaryOperator::kShiftLeft, As<T>(std::move(left)),
                                        As<std::int64_t>(std::move(right)), where);
    } else {
      return nullptr;
    }
  });
}

NodePtr MakeComplexArithmetic(unsigned op, NodePtr left, NodePtr right, SourceRange where) {
  return std::make_unique<ComplexArithmetic>(op, As<OneTCcomplex>(std::move(left)),
                                             As<OneTCcomplex>(std::move(right)), where);
}

NodePtr MakePointArithmetic(BinaryOperator op, TypeName type, NodePtr left, NodePtr right) {
  const auto make = [&](auto t) -> NodePtr {
    using P = typename decltype(t)::type;
    if (op == BinaryOperator::kAdd) {
      return MakePlainBinary<P, Coordinatewise<AddOp>>(std::move(left), std::move(right));
    }
    return MakePlainBinary<P, Coordinatewise<SubtractOp>>(std::move(left), std::move(right));
  };
  switch (type) {
    case TypeName::kPoint:
      return make(std::type_identity<PointInt>());
    case TypeName::kFpoint:
      return make(std::type_identity<PointDouble>());
    default:
      return make(std::type_identity<Point3D>());
  }
}

NodePtr MakeNegate(TypeName type, NodePtr operand) {
  if (type == TypeName::kComplex) {
    return MakeUnary<OneTCcomplex, OneTCcomplex, NegateFunction>(std::move(operand));
  }
  return WithArithmetic(type, [&](auto t) {
    using T = typename decltype(t)::type;
    return MakeUnary<T, T, NegateFunction>(std::move(operand));
  });
}

NodePtr MakeComplement(TypeName type, NodePtr operand) {
  return WithArithmetic(type, [&](auto t) -> NodePtr {
    using T = typename decltype(t)::type;
    if constexpr (std::is_integral_v<T>) {
      return MakeUnary<T, T, ComplementFunction>(std::move(operand));
    } else {
      return nullptr;
    }
  });
}

NodePtr MakeTruth(TypeName type, NodePtr operand) {
  if (type == TypeName::kComplex) {
    return MakeUnary<OneTCcomplex, int, TruthFunction>(std::move(operand));
  }
  return WithNumber(type, [&](auto t) {
    return MakeUnary<typename decltype(t)::type, int, TruthFunction>(std::move(operand));
  });
}

NodePtr MakeNot(NodePtr operand) { return MakeUnary<int, int, NotFunction>(std::move(operand)); }
NodePtr MakeAnd(NodePtr left, NodePtr right) {
  return std::make_unique<Logical<true>>(As<int>(std::move(left)), As<int>(std::move(right)));
}
NodePtr MakeOr(NodePtr left, NodePtr right) {
  return std::make_unique<Logical<false>>(As<int>(std::move(left)), As<int>(std::move(right)));
}

}  // namespace tesselc

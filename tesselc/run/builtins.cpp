#include "tesselc/run/builtins.h"

#include <chrono>
#include <cmath>
#include <complex>

#include "frame/interface/missing_value.h"
#include "frame/interface/status.h"
#include "tesselc/run/mathematics.h"
#include "tesselc/run/operators.h"
#include "tesselc/run/script_error.h"

namespace tesselc {
namespace {

double Min(double a, double b) { return b < a ? b : a; }
double Max(double a, double b) { return a < b ? b : a; }
bool IsNan(double x) { return std::isnan(x); }

constexpr MathFunction OfOne(std::string_view name, double (*function)(double)) {
  return {name, function, nullptr, nullptr};
}
constexpr MathFunction OfOne(std::string_view name, double (*function)(double),
                             OneTCcomplex (*complex_function)(const OneTCcomplex&)) {
  return {name, function, nullptr, nullptr, complex_function};
}
constexpr MathFunction OfTwo(std::string_view name, double (*function)(double, double)) {
  return {name, nullptr, function, nullptr};
}
constexpr MathFunction Test(std::string_view name, bool (*function)(double)) {
  return {name, nullptr, nullptr, function};
}

template <std::complex<double> (*kFunction)(const std::complex<double>&)>
OneTCcomplex ComplexOf(const OneTCcomplex& z) {
  const std::complex<double> result = kFunction({z.m_re, z.m_im});
  return {result.real(), result.imag()};
}

const MathFunction kMathFunctions[] = {
    OfOne("abs", std::fabs),
    OfOne("sqrt", std::sqrt, ComplexOf<std::sqrt>),
    OfOne("exp", std::exp, ComplexOf<std::exp>),
    OfOne("log", std::log, ComplexOf<std::log>),
    OfOne("log10", Log10, ComplexOf<std::log10>),
    OfOne("sin", std::sin, ComplexOf<std::sin>),
    OfOne("cos", std::cos, ComplexOf<std::cos>),
    OfOne("tan", std::tan, ComplexOf<std::tan>),
    OfOne("asin", std::asin, ComplexOf<std::asin>),
    OfOne("acos", std::acos, ComplexOf<std::acos>),
    OfOne("atan", std::atan, ComplexOf<std::atan>),
    OfOne("sinh", std::sinh, ComplexOf<std::sinh>),
    OfOne("cosh", std::cosh, ComplexOf<std::cosh>),
    OfOne("tanh", Tanh, ComplexOf<std::tanh>),
    OfOne("floor", std::floor),
    OfOne("ceil", std::ceil),
    OfOne("round", std::round),
    OfTwo("atan2", std::atan2),
    OfTwo("fmod", std::fmod),
    OfTwo("pow", std::pow),
    OfTwo("min", Min),
    OfTwo("max", Max),
    Test("isnan", IsNan),
    Test("ismissing", IsMissing),
};

class UnaryCall final : public Expr<UnaryCall, double> {
 public:
  UnaryCall(double (*function)(double), ValuePtr<double> argument)
      : function_(function), argument_(std::move(argument)) {}
  double Eval(Frame& frame) override {
    const double argument = argument_->Eval(frame);
    return IsMissing(argument) ? kMissingValue : function_(argument);
  }

 private:
  double (*function_)(double);
  ValuePtr<double> argument_;
};

class BinaryCall final : public Expr<BinaryCall, double> {
 public:
  BinaryCall(double (*function)(double, double), ValuePtr<double> first, ValuePtr<double> second)
      : function_(function), first_(std::move(first)), second_(std::move(second)) {}
  double Eval(Frame& frame) override {
    const double first = first_->Eval(frame);
    return Calculate(first, second_->Eval(frame), function_);
  }

 private:
  double (*function_)(double, double);
  ValuePtr<double> first_, second_;
};

class TestCall final : public Expr<TestCall, int> {
 public:
  TestCall(bool (*function)(double), ValuePtr<double> argument)
      : function_(function), argument_(std::move(argument)) {}
  int Eval(Frame& frame) override { return function_(argument_->Eval(frame)); }

 private:
  bool (*function_)(double);
  ValuePtr<double> argument_;
};

class Assert final : public Node {
 public:
  Assert(ValuePtr<int> condition, SourceRange where)
      : condition_(std::move(condition)), where_(where) {}
  Flow Exec(Frame& frame) override {
    if (!condition_->Eval(frame)) {
      throw ScriptError(where_, status::kFailed, "the assertion does not hold");
    }
    return Flow::kNext;
  }

 private:
  ValuePtr<int> condition_;
  SourceRange where_;
};

class Exit final : public Node {
 public:
  explicit Exit(ValuePtr<int> code) : code_(std::move(code)) {}
  Flow Exec(Frame& frame) override { throw ExitRequest{code_->Eval(frame)}; }

 private:
  ValuePtr<int> code_;
};

class Clock final : public Expr<Clock, double> {
 public:
  double Eval(Frame&) override {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
  }
};

}  // namespace

std::vector<std::string_view> BuiltinNames() {
  std::vector<std::string_view> names = {"print", "printf", "assert", "exit", "clock"};
  for (const MathFunction& function : kMathFunctions) names.push_back(function.name);
  return names;
}

const MathFunction* FindMathFunction(std::string_view name) {
  for (const MathFunction& function : kMathFunctions) {
    if (function.name == name) return &function;
  }
  return nullptr;
}

NodePtr MakeMathCall(const MathFunction& function, std::vector<NodePtr> arguments) {
  if (function.binary) {
    return std::make_unique<BinaryCall>(function.binary, As<double>(std::move(arguments[0])),
                                        As<double>(std::move(arguments[1])));
  }
  if (function.test) {
    return std::make_unique<TestCall>(function.test, As<double>(std::move(arguments[0])));
  }
  return std::make_unique<UnaryCall>(function.unary, As<double>(std::move(arguments[0])));
}

NodePtr MakeAssert(NodePtr condition, SourceRange where) {
  return std::make_unique<Assert>(As<int>(std::move(condition)), where);
}

NodePtr MakeExit(NodePtr code) { return std::make_unique<Exit>(As<int>(std::move(code))); }

NodePtr MakeClock() { return std::make_unique<Clock>(); }

}  // namespace tesselc

#include "kernel/arithmetic.h"

#include <span>

#include "kernel/power.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

constexpr Op kOps[] = {Op::kAssign,   Op::kAdd,    Op::kSubtract,
                       Op::kMultiply, Op::kDivide, Op::kPower};

template <std::floating_point T>
T Expected(Op op, T x, T y, bool guard) {
  const T missing = ConvertElement<T>(kMissing);
  if (std::isnan(y) || IsMissing(y)) return missing;
  if (op == Op::kAssign) return y;
  if (std::isnan(x) || IsMissing(x)) return missing;
  const double ax = std::abs(double{x});
  const double ay = std::abs(double{y});
  switch (op) {
    case Op::kAdd:
      return x + y;
    case Op::kSubtract:
      return x - y;
    case Op::kMultiply:
      return guard && ax >= 1 && std::abs(1.7e+308 / double{x}) <= ay ? missing : x * y;
    case Op::kDivide:
      return ay < 1.0 && ay * 1.7e+308 <= ax ? missing : x / y;
    default:
      return static_cast<T>(CheckedPower(x, y));
  }
}

template <std::integral T>
T Expected(Op op, T x, T y, bool /*guard*/) {
  const auto a = static_cast<std::uint64_t>(x);
  const auto b = static_cast<std::uint64_t>(y);
  switch (op) {
    case Op::kAssign:
      return y;
    case Op::kAdd:
      return static_cast<T>(a + b);
    case Op::kSubtract:
      return static_cast<T>(a - b);
    case Op::kMultiply:
      return static_cast<T>(a * b);
    case Op::kDivide:
      if (y == 0) return 0;
      return static_cast<T>(y) == static_cast<T>(-1) && std::signed_integral<T>
                 ? static_cast<T>(0 - a)
                 : static_cast<T>(x / y);
    default: {
      if (x == 0 && y < 0) return 0;
      const double base = static_cast<double>(x);
      const double exponent = static_cast<double>(y);
      double power = 0;
      Power({&base, 1}, {&exponent, 1}, {&power, 1});
      return ConvertElement<T>(power);
    }
  }
}

template <class T>
class ArithmeticTest : public ::testing::Test {};
TYPED_TEST_SUITE(ArithmeticTest, ElementTypes);

TYPED_TEST(ArithmeticTest, AgreesWithTheElementRules) {
  using T = TypeParam;
  for (const Op op : kOps) {
    for (const bool guard : {false, true}) {
      for (const std::size_t size : SampleLengths()) {
        const auto x = SampleValues<T>(size, 1);
        const auto y = SampleValues<T>(size, 2);
        std::vector<T> expected(size);
        for (std::size_t i = 0; i < size; ++i) expected[i] = Expected(op, x[i], y[i], guard);
        std::vector<T> actual = x;
        Apply<T>(op, actual, y, guard);
        SCOPED_TRACE(static_cast<int>(op));
        ExpectSame(actual, expected);
      }
    }
  }
}

TYPED_TEST(ArithmeticTest, AppliesEveryPairOfEdgeValuesAsAScalar) {
  using T = TypeParam;
  for (const Op op : kOps) {
    for (const bool guard : {false, true}) {
      for (const T y : EdgeValues<T>()) {
        const std::vector<T> x = EdgeValues<T>();
        std::vector<T> expected;
        for (const T value : x) expected.push_back(Expected(op, value, y, guard));
        std::vector<T> actual = x;
        ApplyScalar<T>(op, actual, y, guard);
        SCOPED_TRACE(static_cast<int>(op));
        ExpectSame(actual, expected);
        for (std::size_t i = 0; i < x.size(); ++i) {
          T element = x[i];
          ApplyElement<T>(op, element, y, guard);
          ASSERT_TRUE(SameValue(element, expected[i])) << +x[i] << " and " << +y;
        }
      }
    }
  }
}

TYPED_TEST(ArithmeticTest, TakesAnOperandThatIsTheTarget) {
  using T = TypeParam;
  for (const Op op : kOps) {
    const auto x = SampleValues<T>(513, 3);
    std::vector<T> expected;
    for (const T value : x) expected.push_back(Expected(op, value, value, false));
    std::vector<T> actual = x;
    Apply<T>(op, actual, actual, false);
    ExpectSame(actual, expected);
  }
}

TYPED_TEST(ArithmeticTest, ConvertsDoubleOperands) {
  using T = TypeParam;
  for (const Op op : kOps) {
    const auto x = SampleValues<T>(2500, 4);
    const auto y = SampleValues<double>(2500, 5);
    std::vector<T> expected;
    for (std::size_t i = 0; i < x.size(); ++i) {
      expected.push_back(Expected(op, x[i], ConvertOperand<T>(y[i]), false));
    }
    std::vector<T> actual = x;
    ApplyConverted<T, double>(op, actual, y, false);
    ExpectSame(actual, expected);
  }
}

TEST(ArithmeticTest, MissingDoubleOperandMakesAFloatElementMissing) {
  std::vector<float> x = {5, 6};
  const std::vector<double> y = {kMissing, 1};
  ApplyConverted<float, double>(Op::kAdd, x, y, false);
  ExpectSame(x, {-0.0f, 7.0f});
}

TEST(ArithmeticTest, WithholdsQuotientsThatOverflow) {
  std::vector<double> x = {1, 2, 3, 1e300, 1e300};
  const std::vector<double> y = {1, 0, 2, 1e-10, 1e10};
  Apply<double>(Op::kDivide, x, y, false);
  ExpectSame(x, {1, kMissing, 1.5, kMissing, 1e290});
}

template <class T>
class DivisionTest : public ::testing::Test {};
using FloatingTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE(DivisionTest, FloatingTypes);

// Among plain quotients, which have a loop of their own.
TYPED_TEST(DivisionTest, GuardsASingleElementOfALongRun) {
  using T = TypeParam;
  constexpr std::size_t kSize = 100;
  for (const T dividend : EdgeValues<T>()) {
    for (const T divisor : EdgeValues<T>()) {
      for (std::size_t at = 0; at < kSize; at += 33) {
        std::vector<T> x(kSize, T{6}), y(kSize, T{4}), expected(kSize, T{1.5});
        x[at] = dividend;
        y[at] = divisor;
        expected[at] = Expected(Op::kDivide, dividend, divisor, false);
        Apply<T>(Op::kDivide, x, y, false);
        ExpectSame(x, expected);
      }
    }
  }
}

TEST(ArithmeticTest, WithholdsProductsThatOverflowOnlyWhenAsked) {
  double x = 1e300;
  ApplyElement(Op::kMultiply, x, 1e10, true);
  EXPECT_EQ(x, kMissing);
  x = 1e300;
  ApplyElement(Op::kMultiply, x, 1e10, false);
  EXPECT_EQ(x, std::numeric_limits<double>::infinity());
}

TEST(ArithmeticTest, IntegersWrapAndSaturate) {
  const int low = std::numeric_limits<int>::min();
  const int high = std::numeric_limits<int>::max();
  const struct {
    Op op;
    int x, y, expected;
  } cases[] = {
      {Op::kAdd, high, 1, low},    {Op::kSubtract, low, 1, high},  {Op::kMultiply, high, 2, -2},
      {Op::kDivide, 7, 0, 0},      {Op::kDivide, low, -1, low},    {Op::kPower, 2, 31, high},
      {Op::kPower, -2, 1023, low}, {Op::kPower, 10, 400, high},    {Op::kPower, 0, -1, 0},
      {Op::kPower, 2, -1, 0},      {Op::kPower, 7, 11, 1977326743}};
  for (const auto& c : cases) {
    int x = c.x;
    ApplyElement(c.op, x, c.y, false);
    EXPECT_EQ(x, c.expected) << static_cast<int>(c.op) << " " << c.x << " " << c.y;
  }
}

TEST(ArithmeticTest, UnknownOpChangesNothing) {
  std::vector<double> x = {1, 2};
  Apply<double>(static_cast<Op>(99), x, x, false);
  ExpectSame(x, {1, 2});
}

}  // namespace
}  // namespace vela::kernel

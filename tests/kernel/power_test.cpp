#include "kernel/power.h"

#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// In units in the last place of the exact value, which long double holds to 11 bits more. Where it
// does not, there is nothing better to compare with than the C library's own power.
double ErrorOf(double x, double y, double power) {
  const long double exact = std::pow(static_cast<long double>(x), static_cast<long double>(y));
  const double nearest = std::abs(static_cast<double>(exact));
  const double unit = std::nextafter(nearest, kInfinity) - nearest;
  return static_cast<double>(std::abs((static_cast<long double>(power) - exact) / unit));
}

TEST(PowerTest, IsAccurate) {
  std::mt19937_64 engine(7);
  std::uniform_real_distribution<double> uniform(-1, 1);
  // Bases over a wide range and around 1, results over a modest range and over nearly all.
  for (const double base_range : {0.03, 1.0, 500.0}) {
    for (const double result_range : {1.0, 60.0, 700.0}) {
      std::vector<double> x(4001);
      std::vector<double> y(x.size());
      std::vector<double> power(x.size());
      for (std::size_t i = 0; i < x.size(); ++i) {
        const double log = uniform(engine) * base_range;
        x[i] = std::exp(log);
        y[i] = uniform(engine) * result_range / log;
      }
      Power(x, y, power);
      for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_LT(ErrorOf(x[i], y[i], power[i]), result_range > 60 ? 1.01 : 0.61)
            << x[i] << " ^ " << y[i];
      }
    }
  }
}

TEST(PowerTest, IsExactWhereTheResultIs) {
  for (int base = -60; base <= 60; ++base) {
    double exact = 1;
    for (int exponent = 0; std::abs(exact) < 0x1p53 && exponent < 40; ++exponent, exact *= base) {
      const double x = base;
      const double y = exponent;
      double power = 0;
      Power({&x, 1}, {&y, 1}, {&power, 1});
      EXPECT_EQ(power, exact) << base << " ^ " << exponent;
    }
  }
  for (int exponent = -1074; exponent < 1024; ++exponent) {
    const double x = 2;
    const double y = exponent;
    double power = 0;
    Power({&x, 1}, {&y, 1}, {&power, 1});
    EXPECT_EQ(power, std::ldexp(1.0, exponent)) << exponent;
  }
}

TEST(PowerTest, FollowsTheCLibraryOnSpecialOperands) {
  std::vector<double> operands = EdgeValues<double>();
  for (const double more : {-3.0, 1023.0, 1024.0, -1022.0, -1074.0, 1e10, 9007199254740993.0}) {
    operands.push_back(more);
  }
  for (const double x : operands) {
    // All exponents at once, so that special and ordinary lanes share vectors.
    const std::vector<double> bases(operands.size(), x);
    std::vector<double> power(operands.size());
    Power(bases, operands, power);
    for (std::size_t i = 0; i < operands.size(); ++i) {
      const double expected = std::pow(x, operands[i]);
      const bool close = std::abs(power[i] - expected) <= std::abs(expected) * 0x1p-52;
      EXPECT_TRUE(SameValue(power[i], expected) || (close && std::isfinite(expected)))
          << x << " ^ " << operands[i] << " is " << power[i] << ", expected " << expected;
    }
  }
}

TEST(PowerTest, DoesNotDependOnPosition) {
  const auto x = SampleValues<double>(100, 1);
  const auto y = SampleValues<double>(100, 2);
  std::vector<double> whole(100);
  Power(x, y, whole);
  for (std::size_t i = 0; i < x.size(); ++i) {
    double alone = 0;
    Power({&x[i], 1}, {&y[i], 1}, {&alone, 1});
    EXPECT_TRUE(SameValue(alone, whole[i])) << x[i] << " ^ " << y[i];
  }
}

TEST(CheckedPowerTest, IsMissingWithoutAFiniteValue) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const std::pair<double, double> without[] = {
      {kMissing, 2}, {2, kMissing}, {kMissing, 0},  {-8, 1.0 / 3},     {0, -1},
      {-0.0, -3},    {10, 400},     {kInfinity, 2}, {-kInfinity, 0.5}, {2, kInfinity}};
  for (const auto& [x, y] : without) EXPECT_EQ(CheckedPower(x, y), kMissing) << x << " ^ " << y;
  const struct {
    double x, y, expected;
  } cases[] = {{2, 10, 1024}, {-2, 3, -8}, {10, 22, 1e22},      {2, 1023, 0x1p1023},
               {10, -400, 0}, {0, 0, 1},   {0.5, kInfinity, 0}, {kInfinity, -1, 0}};
  for (const auto& c : cases) {
    EXPECT_TRUE(SameValue(CheckedPower(c.x, c.y), c.expected)) << c.x << " ^ " << c.y;
  }
  EXPECT_TRUE(std::isnan(CheckedPower(nan, 2)));
  EXPECT_EQ(CheckedPower(nan, 0), 1);
  EXPECT_EQ(CheckedPower(nan, kMissing), kMissing);

  std::vector<double> x = {nan, 1, nan};
  CheckedPower(x, std::vector<double>{0, nan, kMissing}, x);
  ExpectSame(x, {kMissing, kMissing, kMissing});
}

}  // namespace
}  // namespace vela::kernel

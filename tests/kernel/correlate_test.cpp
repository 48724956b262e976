#include "kernel/correlate.h"

#include <algorithm>
#include <complex>

#include "kernel/convert.h"
#include "tests/kernel/samples.h"
#include "tests/kernel/windows.h"

namespace vela::kernel {
namespace {

// The sum, its products added row by row, and how far other ways of adding may be from it.
struct Expected {
  double sum = 0.0, tolerance = 0.0;
};

template <class T>
Expected SumAt(const Grid<T>& x, const Grid<double>& kernel, EdgeMode mode, bool normalise,
               std::size_t r, std::size_t c) {
  Expected expected;
  const std::vector<T> window = WindowAt(x, kernel.rows, kernel.rows / 2, mode, r, c);
  double divisor = 0.0;
  for (std::size_t k = 0; k < window.size(); ++k) {
    const double product = kernel.values[k] * static_cast<double>(window[k]);
    expected.sum += product;
    expected.tolerance += std::fabs(product) * 1e-13;
    divisor += kernel.values[k];
  }
  if (normalise && divisor != 0.0) {
    expected.sum /= divisor;
    expected.tolerance /= std::fabs(divisor);
  }
  return expected;
}

template <class T>
T Clamped(double value) {
  constexpr double kLow = std::numeric_limits<T>::lowest(), kHigh = std::numeric_limits<T>::max();
  return ConvertElement<T>(value > kHigh ? kHigh : value < kLow ? kLow : value);
}

std::vector<double> Kernels(std::size_t side, int kind) {
  std::vector<double> kernel = RandomElements<double>(side * side, false, side);
  for (std::size_t k = 0; k < kernel.size(); ++k) {
    const double i = static_cast<double>(k / side), j = static_cast<double>(k % side);
    if (kind == 0) kernel[k] = std::ldexp(kernel[k], -20);
    if (kind == 1) kernel[k] = std::exp(-0.1 * i * i) * std::exp(-0.1 * j * j) / 7;  // separable
    if (kind == 2) kernel[k] = (1 + i) * (j - 1) * 3;                                // whole, too
    if (kind == 3) kernel[k] = 1.0 / static_cast<double>(side * side);
    if (kind == 4) kernel[k] = std::floor(std::ldexp(kernel[k], -14));  // whole
  }
  return kernel;
}

template <class T>
class CorrelateTest : public ::testing::Test {};
TYPED_TEST_SUITE(CorrelateTest, MatrixElementTypes);

TYPED_TEST(CorrelateTest, SumsProductsOfWindows) {
  using T = TypeParam;
  unsigned seed = 0;
  for (const auto& [rows, cols, side] : {std::array<std::size_t, 3>{1, 1, 3},
                                         {1, 1, 1},
                                         {5, 37, 2},
                                         {23, 9, 3},
                                         {17, 70, 5},
                                         {40, 19, 7},
                                         {31, 90, 15},
                                         {3, 5, 16}}) {
    for (const EdgeMode mode : {EdgeMode::kZeros, EdgeMode::kMirror, EdgeMode::kRepeat}) {
      for (int kind = 0; kind < 5; ++kind) {
        const bool normalise = ++seed % 2 == 0;
        const Grid<double> kernel(side, side, Kernels(side, kind));
        Grid<T> x(rows, cols,
                  seed % 3 == 0 ? SampleValues<T>(rows * cols, seed)
                                : RandomElements<T>(rows * cols, true, seed));
        for (T& value : x.values) {  // sums do not overflow in one order only
          if (std::fabs(static_cast<double>(value)) > 1e100) value = static_cast<T>(kInf);
        }
        Grid<T> actual = x;
        const bool fits = mode != EdgeMode::kMirror || side / 2 < std::min(rows, cols);
        ASSERT_EQ(Correlate(actual.Span(), kernel.Const(), mode, normalise), fits);
        for (std::size_t k = 0; k < rows * cols; ++k) {
          const Expected expected = SumAt(x, kernel, mode, normalise, k / cols, k % cols);
          const T exact = Clamped<T>(expected.sum);
          const double rounding = static_cast<double>(exact) * std::numeric_limits<T>::epsilon();
          const double tolerance = expected.tolerance + std::fabs(rounding);
          const double error = static_cast<double>(actual.values[k]) - static_cast<double>(exact);
          ASSERT_TRUE(!fits ? Same(actual.values[k], x.values[k])
                            : Same(actual.values[k], exact) ||
                                  (std::floating_point<T> && std::fabs(error) <= tolerance))
              << rows << " by " << cols << ", side " << side << ", kind " << kind << ", mode "
              << static_cast<int>(mode) << ", element " << k << ": " << +actual.values[k]
              << ", expected " << +exact;
        }
      }
    }
  }
}

TEST(CorrelateSpecialsTest, FactorsDoNotShow) {
  // 0 times infinity.
  Grid<double> x(1, 7, std::vector<double>(7, 8.0));
  x.values[0] = kInf;
  Grid<double> corner(5, 5, std::vector<double>(25, 0.0));
  corner.values[12] = 0.125;
  ASSERT_TRUE(Correlate(x.Span(), corner.Const(), EdgeMode::kZeros, false));
  constexpr double kMost = std::numeric_limits<double>::max();
  ExpectSame(x.values, {kMost, kNaN, kNaN, 1, 1, 1, 1});
  // Sums that overflow in one of the two passes only.
  Grid<double> large(5, 5, std::vector<double>(25, 1e308));
  ASSERT_TRUE(Correlate(large.Span(), Grid<double>(5, 5, std::vector<double>(25, 0.01)).Const(),
                        EdgeMode::kRepeat, false));
  EXPECT_NEAR(large.values[12] / 1e308, 0.25, 1e-12);
}

TEST(CorrelateSpecialsTest, RefusesUnknownModes) {
  Grid<int> x(2, 2, {1, 2, 3, 4});
  EXPECT_FALSE(Correlate(x.Span(), Grid<double>(1, 1, {2.0}).Const(), EdgeMode{3}, false));
  EXPECT_EQ(x.values, (std::vector<int>{1, 2, 3, 4}));
}

struct Z {
  double m_re, m_im;
  double GetAmplitude() const { return std::hypot(m_re, m_im); }
};

TEST(CorrelateComplexTest, TakesPartsOnTheirOwn) {
  const std::size_t rows = 9, cols = 13;
  const auto parts = RandomElements<double>(2 * rows * cols, true, 5);
  for (int kind = 0; kind < 2; ++kind) {
    const Grid<double> kernel(4, 4, Kernels(4, kind));
    Grid<double> re(rows, cols, {}), im(rows, cols, {});
    Grid<Z> z(rows, cols, {});
    for (std::size_t k = 0; k < rows * cols; ++k) {
      re.values.push_back(parts[2 * k]);
      im.values.push_back(parts[2 * k + 1]);
      z.values.push_back({parts[2 * k], parts[2 * k + 1]});
    }
    for (auto* part : {&re, &im}) {
      ASSERT_TRUE(Correlate(part->Span(), kernel.Const(), EdgeMode::kMirror, true));
    }
    ASSERT_TRUE(CorrelateComplex(z.Span(), kernel.Const(), EdgeMode::kMirror, true));
    for (std::size_t k = 0; k < rows * cols; ++k) {
      EXPECT_EQ(z.values[k].m_re, re.values[k]);
      EXPECT_EQ(z.values[k].m_im, im.values[k]);
    }
  }
}

}  // namespace
}  // namespace vela::kernel

#include "kernel/linear_algebra.h"

#include <complex>

#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

using Complex = std::complex<double>;

template <class T>
struct Matrix {
  std::size_t rows = 0, cols = 0;
  std::vector<T> values;

  Matrix(std::size_t row_count, std::size_t col_count, std::vector<T> elements = {})
      : rows(row_count), cols(col_count), values(std::move(elements)) {
    values.resize(rows * cols);
  }
  T& operator()(std::size_t row, std::size_t col) { return values[row * cols + col]; }
  const T& operator()(std::size_t row, std::size_t col) const { return values[row * cols + col]; }
  MatrixSpan<T> span() { return {values, rows, cols}; }
  MatrixSpan<const T> span() const { return {values, rows, cols}; }
};

template <class T>
Matrix<T> Random(std::size_t rows, std::size_t cols, unsigned seed) {
  std::mt19937 engine(seed);
  std::uniform_real_distribution<double> uniform(-1, 1);
  Matrix<T> x(rows, cols);
  for (T& value : x.values) {
    if constexpr (std::same_as<T, Complex>) {
      value = {uniform(engine), uniform(engine)};
    } else {
      value = static_cast<T>(uniform(engine));
    }
  }
  return x;
}

template <class T>
Matrix<T> Product(const Matrix<T>& a, const Matrix<T>& b) {
  Matrix<T> product(a.rows, b.cols);
  for (std::size_t i = 0; i < a.rows; ++i) {
    for (std::size_t j = 0; j < b.cols; ++j) {
      for (std::size_t k = 0; k < a.cols; ++k) {
        product(i, j) = static_cast<T>(product(i, j) + a(i, k) * b(k, j));
      }
    }
  }
  return product;
}

template <class T>
void ExpectNear(const Matrix<T>& actual, const Matrix<T>& expected, double tolerance) {
  for (std::size_t i = 0; i < expected.values.size(); ++i) {
    ASSERT_LE(std::abs(actual.values[i] - expected.values[i]), tolerance)
        << "element " << i << " of " << actual.rows << " x " << actual.cols;
  }
}

template <class T>
Matrix<T> Identity(std::size_t size) {
  Matrix<T> x(size, size);
  for (std::size_t i = 0; i < size; ++i) x(i, i) = T{1};
  return x;
}

template <class T>
class LinearAlgebraTest : public ::testing::Test {
 public:
  static constexpr double kEpsilon = std::same_as<T, float> ? 1e-6 : 1e-14;
};
using FloatingTypes = ::testing::Types<float, double, Complex>;
TYPED_TEST_SUITE(LinearAlgebraTest, FloatingTypes);

TYPED_TEST(LinearAlgebraTest, ProductsOfAllShapes) {
  using T = TypeParam;
  for (const std::size_t rows : {0, 1, 3, 40}) {
    for (const std::size_t depth : {0, 1, 2, 9, 70}) {
      for (const std::size_t cols : {0, 1, 5, 33}) {
        const auto a = Random<T>(rows, depth, 1), b = Random<T>(depth, cols, 2);
        auto out = Random<T>(rows, cols, 3);
        Multiply<T>(a.span(), b.span(), out.span());
        ExpectNear(out, Product(a, b), 100 * this->kEpsilon);
      }
    }
  }
}

TYPED_TEST(LinearAlgebraTest, InversesQuotientsAndPowersUndoProducts) {
  using T = TypeParam;
  for (const std::size_t size : {0, 1, 2, 3, 8, 17, 64, 130}) {
    auto x = Random<T>(size, size, static_cast<unsigned>(size));
    for (std::size_t i = 0; i < size; ++i) x(i, (i + 1) % size) += T{4};
    auto inverse = x;
    ASSERT_TRUE(Invert(inverse.span()));
    ExpectNear(Product(inverse, x), Identity<T>(size), 100 * this->kEpsilon);

    const auto a = Random<T>(5, size, 9);
    Matrix<T> quotient(5, size);
    ASSERT_TRUE(SolveRight<T>(a.span(), x.span(), quotient.span()));
    ExpectNear(Product(quotient, x), a, 100 * this->kEpsilon);

    auto power = inverse;
    ASSERT_TRUE(Power(power.span(), -5));
    auto expected = x;
    for (int i = 1; i < 5; ++i) expected = Product(expected, x);
    double scale = 1;
    for (const T& value : expected.values) scale = std::max<double>(scale, std::abs(value));
    ExpectNear(power, expected, 1000 * scale * this->kEpsilon);
    ASSERT_TRUE(Power(power.span(), 0));
    EXPECT_EQ(power.values, Identity<T>(size).values);
  }
}

TEST(LinearAlgebraValuesTest, SingularIsWhatRoundingHides) {
  struct Case {
    std::size_t size;
    std::vector<double> values;
    bool invertible;
  };
  std::vector<double> deficient = Random<double>(40, 40, 5).values;
  for (int i = 0; i < 40; ++i) deficient[39 * 40 + i] = deficient[i] / 3 - deficient[40 + i];
  const Case cases[] = {
      {1, {0}, false},
      {2, {1, 2, 2, 4}, false},
      {3, {1, 2, 3, 4, 5, 6, 7, 8, 9}, false},
      {3, {1, 2, 3, 4, 5, 6, 7, 8, 10}, true},
      {2, {1, 0, 0, 1e-200}, true},
      {2, {1, 1e20, 1, 0}, true},
      {2, {1, 1, 1e-30, 2e-30}, true},
      {1, {1e-310}, false},  // the inverse is no double
      {2, {1, 0, 0, kMissing}, false},
      {2, {1, kNaN, 0, 1}, false},
      {2, {1, 0, kInf, 1}, false},
      {40, deficient, false},
  };
  for (const Case& c : cases) {
    std::vector<double> x = c.values;
    const MatrixSpan<double> span(x, c.size, c.size);
    EXPECT_EQ(Invert(span), c.invertible) << ::testing::PrintToString(c.values);
    if (c.invertible) continue;
    ExpectSame(x, c.values);
    EXPECT_FALSE(Power(span, -1));
    ExpectSame(x, c.values);
  }
}

TEST(LinearAlgebraValuesTest, MissingValuesSpreadAlongRowsAndColumns) {
  const auto test = [](auto missing, auto is_missing) {
    using T = decltype(missing);
    auto a = Random<T>(4, 9, 1), b = Random<T>(9, 5, 2), plain = Product(a, b);
    a(1, 8) = missing;
    b(3, 0) = b(7, 4) = b(2, 4) = missing;
    Matrix<T> out(4, 5);
    Multiply<T>(a.span(), b.span(), out.span());
    for (std::size_t row = 0; row < 4; ++row) {
      for (std::size_t col = 0; col < 5; ++col) {
        const bool expected = row == 1 || col == 0 || col == 4;
        EXPECT_EQ(is_missing(out(row, col)), expected) << row << ", " << col;
        EXPECT_TRUE(expected || std::abs(out(row, col) - plain(row, col)) <= 1e-14);
      }
    }
    auto square = Identity<T>(9);
    ASSERT_TRUE(SolveRight<T>(a.span(), square.span(), (plain = Matrix<T>(4, 9)).span()));
    for (std::size_t row = 0; row < 4; ++row) EXPECT_EQ(is_missing(plain(row, 3)), row == 1);
    square(4, 2) = missing;
    EXPECT_FALSE(SolveRight<T>(a.span(), square.span(), plain.span()));
    ASSERT_TRUE(Power(square.span(), 2));
    EXPECT_TRUE(is_missing(square(4, 8)) && is_missing(square(0, 2)));
    EXPECT_EQ(square(8, 8), T{1});
  };
  const auto both = [](Complex z) { return IsMissing(z.real()) && IsMissing(z.imag()); };
  test(kMissing, [](double x) { return IsMissing(x); });
  test(Complex(1, kMissing), both);
  test(Complex(kMissing, 0), both);
}

TEST(LinearAlgebraValuesTest, NonFiniteProductsStayInTheirRow) {
  const Matrix<double> a(3, 2, {1, kInf, kNaN, 1, 1, 1}), b(2, 2, {1, 2, 1, 0});
  Matrix<double> out(3, 2);
  Multiply<double>(a.span(), b.span(), out.span());
  ExpectSame(out.values, {kInf, kNaN, kNaN, kNaN, 2, 2});
}

template <class T>
class IntegerProductTest : public ::testing::Test {};
using IntegerTypes =
    ::testing::Types<char, unsigned char, short, unsigned short, int, unsigned int>;
TYPED_TEST_SUITE(IntegerProductTest, IntegerTypes);

TYPED_TEST(IntegerProductTest, SumsWrap) {
  using T = TypeParam;
  for (const std::size_t rows : {0, 1, 4, 7}) {
    for (const std::size_t cols : {0, 1, 9, 32, 67}) {
      for (const std::size_t depth : {0, 1, 50}) {
        const Matrix<T> a(rows, depth, RandomElements<T>(rows * depth, false, cols));
        const Matrix<T> b(depth, cols, RandomElements<T>(depth * cols, false, rows));
        Matrix<T> out(rows, cols);
        Multiply<T>(a.span(), b.span(), out.span());
        for (std::size_t i = 0; i < rows; ++i) {
          for (std::size_t j = 0; j < cols; ++j) {
            std::uint64_t sum = 0;
            for (std::size_t k = 0; k < depth; ++k) {
              sum += static_cast<std::uint64_t>(a(i, k)) * static_cast<std::uint64_t>(b(k, j));
            }
            ASSERT_EQ(out(i, j), static_cast<T>(sum)) << i << ", " << j;
          }
        }
      }
    }
  }
}

}  // namespace
}  // namespace vela::kernel

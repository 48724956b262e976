// Kernels that walk the rows or the columns of a matrix.
#include <algorithm>
#include <cmath>

#include "kernel/cross.h"
#include "kernel/cumulative.h"
#include "kernel/matrix_difference.h"
#include "kernel/matrix_find.h"
#include "kernel/nonzero.h"
#include "kernel/sum_columns.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {

// What the kernels need of a complex element.
struct TestComplex {
  double m_re = 0, m_im = 0;
  double GetAmplitude() const { return std::hypot(m_re, m_im); }
  friend TestComplex operator+(TestComplex a, TestComplex b) {
    return {a.m_re + b.m_re, a.m_im + b.m_im};
  }
  friend TestComplex operator-(TestComplex a, TestComplex b) {
    return {a.m_re - b.m_re, a.m_im - b.m_im};
  }
  friend TestComplex operator*(TestComplex a, TestComplex b) {
    return {a.m_re * b.m_re - a.m_im * b.m_im, a.m_re * b.m_im + a.m_im * b.m_re};
  }
  friend bool operator==(const TestComplex&, const TestComplex&) = default;
};
template <>
inline constexpr auto kElementParts<TestComplex> = std::tuple(&TestComplex::m_re,
                                                              &TestComplex::m_im);

namespace {

template <class T>
class MatrixRunTest : public ::testing::Test {};
TYPED_TEST_SUITE(MatrixRunTest, ElementTypes);

struct Shape {
  std::size_t rows, cols;
};
constexpr Shape kShapes[] = {{0, 0},  {1, 1},  {1, 200},  {200, 1},
                             {7, 65}, {8, 64}, {17, 300}, {40, 1100}};

// Calls visit(positions) with the positions of each row, or of each column.
template <class Visit>
void ForEachRun(Shape shape, bool by_rows, Visit visit) {
  const std::size_t runs = by_rows ? shape.rows : shape.cols;
  const std::size_t length = by_rows ? shape.cols : shape.rows;
  for (std::size_t run = 0; run < runs; ++run) {
    std::vector<std::size_t> positions;
    for (std::size_t k = 0; k < length; ++k) {
      positions.push_back(by_rows ? run * shape.cols + k : k * shape.cols + run);
    }
    visit(positions);
  }
}

template <class From, class To>
void ExpectRunning(const std::vector<From>& x, Shape shape, bool by_rows, bool product) {
  std::vector<To> expected(x.size()), actual(x.size());
  ForEachRun(shape, by_rows, [&](const std::vector<std::size_t>& positions) {
    double running = product ? 1 : -0.0;
    for (const std::size_t i : positions) {
      const double value = static_cast<double>(x[i]);
      const bool missing = IsMissing(running) || IsMissing(value);
      running = missing ? kMissing : product ? running * value : running + value;
      expected[i] = ConvertElement<To>(running);
    }
  });
  const MatrixSpan<const From> from(x, shape.rows, shape.cols);
  const MatrixSpan<To> to(actual, shape.rows, shape.cols);
  product ? CumulativeProduct(from, by_rows, to) : CumulativeSum(from, by_rows, to);
  ExpectSame(actual, expected);
  if constexpr (std::same_as<From, To>) {
    actual = x;
    product ? CumulativeProduct<From, To>(to, by_rows, to)
            : CumulativeSum<From, To>(to, by_rows, to);
    ExpectSame(actual, expected);
  }
}

TYPED_TEST(MatrixRunTest, RunningSumsAndProducts) {
  for (const Shape shape : kShapes) {
    for (const bool by_rows : {false, true}) {
      for (const bool product : {false, true}) {
        const std::size_t size = shape.rows * shape.cols;
        for (const auto& x :
             {SampleValues<TypeParam>(size, 3), RandomElements<TypeParam>(size, true, 4)}) {
          ExpectRunning<TypeParam, double>(x, shape, by_rows, product);
          ExpectRunning<TypeParam, TypeParam>(x, shape, by_rows, product);
        }
      }
    }
  }
}

TYPED_TEST(MatrixRunTest, NonZeroByRowsAndColumns) {
  using T = TypeParam;
  for (const Shape shape : kShapes) {
    for (const double share : {0.0, 0.02, 1.0}) {
      std::vector<T> x(shape.rows * shape.cols, T{1});
      std::mt19937 engine(9);
      const std::vector<T> edges = EdgeValues<T>();
      for (T& value : x) {
        if (engine() < share * 0x1p32)
          value = engine() % 2 == 0 ? T{0} : edges[engine() % edges.size()];
      }
      for (const double tolerance : {0.0, 0.5, 1.0, -1.0, 1e39, kInf, kNaN}) {
        for (const bool by_rows : {false, true}) {
          std::vector<double> all, any;
          ForEachRun(shape, by_rows, [&](const std::vector<std::size_t>& positions) {
            const auto is_zero = [&](std::size_t i) {
              if (std::integral<T>) return x[i] == 0;
              return tolerance > std::fabs(static_cast<double>(x[i]));
            };
            const auto is_non_zero = [&](std::size_t i) {
              if (std::integral<T>) return x[i] != 0;
              return std::fabs(static_cast<double>(x[i])) > tolerance;
            };
            all.push_back(std::ranges::none_of(positions, is_zero));
            any.push_back(std::ranges::any_of(positions, is_non_zero));
          });
          std::vector<double> actual(all.size());
          const MatrixSpan<const T> matrix(x, shape.rows, shape.cols);
          AllNonZero(matrix, by_rows, tolerance, std::span(actual));
          ExpectSame(actual, all);
          AnyNonZero(matrix, by_rows, tolerance, std::span(actual));
          ExpectSame(actual, any);
        }
      }
    }
  }
}

TYPED_TEST(MatrixRunTest, DifferencesOfAnyOrder) {
  using T = TypeParam;
  for (const Shape shape : kShapes) {
    const std::vector<T> x = SampleValues<T>(shape.rows * shape.cols, 6);
    for (const bool by_rows : {false, true}) {
      for (const std::size_t order : {0u, 1u, 2u, 5u}) {
        const std::size_t length = by_rows ? shape.cols : shape.rows;
        if (order >= length) continue;
        const Shape to =
            by_rows ? Shape{shape.rows, shape.cols - order} : Shape{shape.rows - order, shape.cols};
        std::vector<T> expected(to.rows * to.cols);
        std::vector<std::vector<std::size_t>> targets;
        ForEachRun(to, by_rows, [&](const auto& positions) { targets.push_back(positions); });
        std::size_t run = 0;
        ForEachRun(shape, by_rows, [&](const std::vector<std::size_t>& positions) {
          std::vector<T> line;
          for (const std::size_t i : positions) line.push_back(x[i]);
          for (std::size_t step = 0; step < order; ++step) {
            for (std::size_t k = 0; k + 1 < line.size(); ++k) {
              const bool missing = IsMissing(line[k]) || IsMissing(line[k + 1]);
              const double difference =
                  static_cast<double>(line[k + 1]) - static_cast<double>(line[k]);
              line[k] = ConvertElement<T>(missing ? kMissing : difference);
            }
            line.pop_back();
          }
          for (std::size_t k = 0; k < line.size(); ++k) expected[targets[run][k]] = line[k];
          ++run;
        });
        std::vector<T> in_place = x;
        MatrixDifference<T>({in_place.data(), shape.rows, shape.cols}, order, by_rows,
                            {in_place.data(), to.rows, to.cols});
        in_place.resize(expected.size());
        ExpectSame(in_place, expected);
      }
    }
  }
}

TYPED_TEST(MatrixRunTest, SumsOfColumnsSkipMissing) {
  using T = TypeParam;
  for (const Shape shape : kShapes) {
    const std::vector<T> x = RandomElements<T>(shape.rows * shape.cols, true, 8);
    std::vector<T> holed = x;
    for (std::size_t i = 0; i < x.size(); i += 3) holed[i] = static_cast<T>(kMissing);
    std::vector<double> expected, actual(shape.cols);
    ForEachRun(shape, false, [&](const std::vector<std::size_t>& positions) {
      double sum = 0;
      for (const std::size_t i : positions)
        sum += IsMissing(holed[i]) ? 0 : static_cast<double>(holed[i]);
      expected.push_back(sum);
    });
    SumColumns<T>({holed.data(), shape.rows, shape.cols}, actual);
    ExpectSame(actual, expected);
  }
}

TEST(SumColumnsTest, KeepsWhatCancellationLeavesAndInfinities) {
  const std::vector<double> x = {1e300, 1, kInf, 1, kNaN, 3, kInf, -kInf, -1e300, 1e20, 1, -1};
  std::vector<double> sums(4);
  SumColumns<double>({x.data(), 3, 4}, sums);
  EXPECT_EQ(sums[1], 1e20 + 4);
  EXPECT_EQ(sums[2], kInf);
  EXPECT_EQ(sums[3], -kInf);
  EXPECT_TRUE(std::isnan(sums[0]));
  const std::vector<double> column = {1, 1e20, 1, -1e20, kMissing};
  SumColumns<double>({column.data(), 5, 1}, std::span(sums).first(1));
  EXPECT_EQ(sums[0], 2);
}

TEST(FindPositionsTest, RowsAndColumnsInRowMajorOrder) {
  for (const Shape shape : kShapes) {
    const std::vector<double> x = SampleValues<double>(shape.rows * shape.cols, 2);
    std::vector<std::uint32_t> rows, cols, expected_rows, expected_cols;
    for (std::size_t i = 0; i < x.size(); ++i) {
      if (!(x[i] >= -3 && x[i] <= 20) || IsMissing(x[i])) continue;
      expected_rows.push_back(static_cast<std::uint32_t>(i / shape.cols));
      expected_cols.push_back(static_cast<std::uint32_t>(i % shape.cols));
    }
    const std::size_t count = FindPositions(MatrixSpan<const double>(x, shape.rows, shape.cols),
                                            -3.0, 20.0, [&](auto r, auto c) {
                                              rows.insert(rows.end(), r.begin(), r.end());
                                              cols.insert(cols.end(), c.begin(), c.end());
                                            });
    EXPECT_EQ(count, expected_rows.size());
    EXPECT_EQ(rows, expected_rows);
    EXPECT_EQ(cols, expected_cols);
  }
}

TEST(CrossTest, VectorsInRowsOrColumns) {
  const std::vector<double> a = {1, 2, 3, 0, 1, kMissing}, b = {4, 5, 6, 1, 0, 0};
  std::vector<double> out(6);
  Cross<double>({a.data(), 2, 3}, {b.data(), 2, 3}, true, {out.data(), 2, 3});
  ExpectSame(out, {-3, 6, -3, kMissing, kMissing, -1});
  const std::vector<double> down = {1, 0, 2, 1, 3, kMissing}, across = {4, 1, 5, 0, 6, 0};
  Cross<double>({down.data(), 3, 2}, {across.data(), 3, 2}, false, {out.data(), 3, 2});
  ExpectSame(out, {-3, kMissing, 6, kMissing, -3, -1});
  std::vector<unsigned char> x = {0, 200, 0}, y = {100, 0, 2};
  Cross<unsigned char>({x.data(), 1, 3}, {y.data(), 1, 3}, true, {x.data(), 1, 3});
  ExpectSame(x, {255, 0, 0});
}

TEST(ComplexRunTest, FollowsTheRulesOfRealElements) {
  using Z = TestComplex;
  const Z missing{kMissing, kMissing};
  const std::vector<Z> x = {{1, 1}, {2, 0}, {0, 1}, {0, kMissing}, {3, 4}, {1, 0}};
  const MatrixSpan<const Z> matrix(x, 2, 3);
  std::vector<Z> out(6);
  const MatrixSpan<Z> result(out, 2, 3);
  CumulativeSum(matrix, true, result);
  EXPECT_EQ(out, (std::vector<Z>{{1, 1}, {3, 1}, {3, 2}, {0, kMissing}, missing, missing}));
  CumulativeProduct(matrix, false, result);
  EXPECT_EQ(out, (std::vector<Z>{{1, 1}, {2, 0}, {0, 1}, missing, {6, 8}, {0, 1}}));
  MatrixDifference<Z>(matrix, 1, false, {out.data(), 1, 3});
  EXPECT_EQ(out[0], missing);
  EXPECT_EQ(out[1], (Z{1, 4}));
  SumColumns(matrix, std::span(out).first(3));
  EXPECT_EQ(out[0], (Z{1, 1}));
  EXPECT_EQ(out[1], (Z{5, 4}));
  std::vector<double> flags(3);
  AllNonZero(matrix, false, 1.4, std::span(flags));
  EXPECT_EQ(flags, (std::vector<double>{0, 1, 0}));
  AnyNonZero(matrix, false, 2.0, std::span(flags));
  EXPECT_EQ(flags, (std::vector<double>{0, 1, 0}));
  const std::vector<double> real = {2, kMissing};
  CumulativeSum<double, Z>({real.data(), 1, 2}, true, {out.data(), 1, 2});
  EXPECT_EQ(out[0], (Z{2, 0}));
  EXPECT_TRUE(IsMissing(out[1]));
}

}  // namespace
}  // namespace vela::kernel

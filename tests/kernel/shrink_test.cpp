#include "kernel/shrink.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "samples.h"
#include "test_complex.h"

namespace vela::kernel {
namespace {

using enum BlockStatistic;
constexpr BlockStatistic kAll[] = {kSum, kMean, kMinimum, kMaximum, kMedian, kCount};

// Of the values that are not missing, in their order.
double Expected(std::vector<double> values, BlockStatistic statistic) {
  const auto count = static_cast<double>(values.size());
  if (statistic == kCount) return count;
  if (values.empty()) return kMissing;
  if (statistic == kSum || statistic == kMean) {
    long double sum = 0;
    for (const double value : values) sum += value;
    return static_cast<double>(statistic == kSum ? sum : sum / static_cast<long double>(count));
  }
  if (statistic == kMedian) {
    std::ranges::stable_sort(values,
                             [](double a, double b) { return a < b || (a == a && b != b); });
    const double high = values[values.size() / 2];
    return values.size() % 2 != 0 ? high : (values[values.size() / 2 - 1] + high) / 2;
  }
  double extreme = values.front();
  for (const double value : values) {
    if (statistic == kMinimum ? value < extreme : value > extreme) extreme = value;
  }
  return extreme;
}

template <class T>
void CheckBlocks(std::vector<T> elements, std::size_t rows, std::size_t row_factor,
                 std::size_t col_factor) {
  const MatrixSpan<const T> x(elements.data(), rows, elements.size() / rows);
  const std::size_t out_rows = (x.rows - 1) / row_factor + 1;
  const std::size_t out_cols = (x.cols - 1) / col_factor + 1;
  for (const BlockStatistic statistic : kAll) {
    std::vector<double> result(out_rows * out_cols, 77);
    const MatrixSpan<double> out(result.data(), out_rows, out_cols);
    Shrink(x, row_factor, col_factor, statistic, out);
    for (std::size_t i = 0; i < out_rows; ++i) {
      for (std::size_t j = 0; j < out_cols; ++j) {
        std::vector<double> values;
        double largest = 0;
        for (std::size_t r = i * row_factor; r < std::min(x.rows, (i + 1) * row_factor); ++r) {
          for (std::size_t c = j * col_factor; c < std::min(x.cols, (j + 1) * col_factor); ++c) {
            if (IsMissing(x(r, c))) continue;
            values.push_back(static_cast<double>(x(r, c)));
            largest = std::max(largest, std::abs(values.back()));
          }
        }
        const double expected = Expected(values, statistic);
        // Compensated sums are right to the last place of the result or of what they cancel.
        const double count = values.size() > 64 ? 1 : static_cast<double>(values.size());
        const bool rounded = (statistic == kSum || statistic == kMean) && largest < kInf;
        const double error = rounded ? largest * count * 0x1p-52 : 0;
        ASSERT_TRUE(Same(out(i, j), expected) || std::abs(out(i, j) - expected) <= error)
            << "statistic " << static_cast<int>(statistic) << " of block " << i << ", " << j
            << " of " << row_factor << " x " << col_factor << " of " << x.rows << " x " << x.cols
            << ": " << out(i, j) << ", expected " << expected;
      }
    }
  }
}

template <class T>
class ShrinkTest : public ::testing::Test {};
using ShrinkTypes =
    ::testing::Types<char, unsigned char, short, unsigned short, int, unsigned int, float, double>;
TYPED_TEST_SUITE(ShrinkTest, ShrinkTypes);

TYPED_TEST(ShrinkTest, AgreesWithTheValuesOfEachBlock) {
  struct Case {
    std::size_t rows, cols, row_factor, col_factor;
  };
  constexpr std::size_t kHuge = 2147483647;
  const Case cases[] = {{1, 1, 1, 1},       {1, 1, kHuge, kHuge},  {7, 5, 1, 1},
                        {8, 64, 4, 4},      {9, 67, 4, 4},         {10, 41, 3, 5},
                        {40, 1, 7, 3},      {1, 2500, 1, 9},       {30, 30, 8, 8},
                        {33, 50, 9, 8},     {5, 2100, 2, 1500},    {70, 70, kHuge, 3},
                        {70, 70, 3, kHuge}, {70, 70, kHuge, kHuge}};
  for (const Case& c : cases) {
    const std::size_t size = c.rows * c.cols;
    for (const bool few : {false, true}) {
      std::vector<TypeParam> values = RandomElements<TypeParam>(size, few, size + few);
      CheckBlocks(values, c.rows, c.row_factor, c.col_factor);
      if constexpr (std::floating_point<TypeParam>) {
        const double specials[] = {kMissing, kNaN, kInf, kMissing, kMissing, -kInf};
        for (std::size_t i = 0; i < size; i += 1 + i * i % 11) {
          values[i] = static_cast<TypeParam>(specials[i % (few ? 6 : 2)]);
        }
        CheckBlocks(values, c.rows, c.row_factor, c.col_factor);
        std::ranges::fill(values, static_cast<TypeParam>(kMissing));
        CheckBlocks(values, c.rows, c.row_factor, c.col_factor);
      }
    }
  }
}

// 1 followed by what plain addition loses altogether.
TEST(Shrink, CompensatesSumsOfLargeBlocks) {
  std::vector<double> x(1000, 0x1p-54);
  x[0] = 1;
  double sum = 0;
  Shrink<double>({x.data(), 10, 100}, 10, 100, kSum, {&sum, 1, 1});
  EXPECT_EQ(sum, 1 + 999 * 0x1p-54);
}

TEST(Shrink, ReducesComplexBlocksByTheirOwnOrder) {
  const TestComplex missing(kMissing, 0);
  const std::vector<TestComplex> x = {{3, 4}, {0, 1}, missing, missing, {-2, 0}, {6, 8}, missing};
  struct Case {
    BlockStatistic statistic;
    TestComplex first, second;
  };
  for (const Case& c :
       {Case{kSum, {7, 13}, {kMissing, kMissing}}, Case{kMean, {1.75, 3.25}, {kMissing, kMissing}},
        Case{kMinimum, {0, 1}, {kMissing, kMissing}}, Case{kMaximum, {6, 8}, {kMissing, kMissing}},
        Case{kMedian, {0.5, 2}, {kMissing, kMissing}}, Case{kCount, {4, 0}, {0, 0}}}) {
    std::vector<TestComplex> out(2);
    Shrink<TestComplex>({x.data(), 1, 7}, 1, 6, c.statistic, {out.data(), 1, 2});
    EXPECT_EQ(out[0].m_re, c.first.m_re);
    EXPECT_EQ(out[0].m_im, c.first.m_im);
    EXPECT_EQ(out[1].m_re, c.second.m_re);
    EXPECT_EQ(out[1].m_im, c.second.m_im);
  }
}

}  // namespace
}  // namespace vela::kernel

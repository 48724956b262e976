#include "kernel/remove_rows.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

#include "test_complex.h"

namespace vela::kernel {
namespace {

double NumberOf(double x) { return x; }
double NumberOf(const TestComplex& x) { return x.m_re; }

template <class T>
void CheckAgainstRowByRow(std::size_t rows, std::size_t cols, unsigned missing_percent,
                          bool only_all) {
  std::mt19937 random(static_cast<unsigned>(rows * 1000 + cols));
  std::vector<T> x(rows * cols), expected;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const bool whole_row = i / cols % 5 == 3;
    x[i] = T{static_cast<double>(i)};
    if (!whole_row && random() % 1000 >= missing_percent * 10) continue;
    if constexpr (std::same_as<T, double>) {
      x[i] = kMissing;
    } else {
      (i % 2 == 0 ? x[i].m_re : x[i].m_im) = kMissing;
    }
  }
  std::vector<std::uint32_t> removed(rows, 77), expected_removed;
  std::ptrdiff_t first_partial = -1;
  for (std::size_t r = 0; r < rows; ++r) {
    const auto row = std::span<const T>(x).subspan(r * cols, cols);
    const auto missing = static_cast<std::size_t>(std::ranges::count_if(row, IsMissing<T>));
    const bool partial = missing > 0 && missing < cols;
    if (partial && first_partial < 0) first_partial = static_cast<std::ptrdiff_t>(r);
    if (cols > 0 && (missing == cols || (partial && !only_all))) {
      expected_removed.push_back(static_cast<std::uint32_t>(r));
    } else {
      expected.insert(expected.end(), row.begin(), row.end());
    }
  }
  const RemovedRows result =
      RemoveRowsWithMissing(MatrixSpan<T>(x.data(), rows, cols), only_all, std::span(removed));
  ASSERT_EQ(result.removed, expected_removed.size());
  EXPECT_EQ(result.kept, rows - result.removed);
  EXPECT_EQ(result.first_partial, first_partial);
  removed.resize(result.removed);
  EXPECT_EQ(removed, expected_removed);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    ASSERT_EQ(NumberOf(x[i]), NumberOf(expected[i])) << "element " << i;
  }
}

TEST(RemoveRows, AgreesWithRowByRow) {
  for (const std::size_t rows : {0u, 1u, 3u, 4u, 40u}) {
    for (const std::size_t cols : {0u, 1u, 2u, 3u, 9u, 100u}) {
      for (const unsigned percent : {0u, 1u, 30u, 100u}) {
        for (const bool only_all : {false, true}) {
          CheckAgainstRowByRow<double>(rows, cols, percent, only_all);
          CheckAgainstRowByRow<TestComplex>(rows, cols, percent, only_all);
        }
      }
    }
  }
}

}  // namespace
}  // namespace vela::kernel

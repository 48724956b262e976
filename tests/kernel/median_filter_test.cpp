#include "kernel/median_filter.h"

#include <algorithm>
#include <stdexcept>

#include "kernel/convert.h"
#include "tests/kernel/samples.h"
#include "tests/kernel/windows.h"

namespace vela::kernel {
namespace {

template <class T>
T MedianOf(std::vector<T> window) {
  const auto less = [](T a, T b) { return a < b || (b != b && a == a); };
  std::sort(window.begin(), window.end(), less);
  const std::size_t middle = window.size() / 2;
  if (window.size() % 2 == 1) return window[middle];
  // Halves first: the sum of two large numbers has no place in a double.
  return ConvertElement<T>(static_cast<double>(window[middle]) / 2 +
                           static_cast<double>(window[middle + 1]) / 2);
}

template <class T>
void ExpectMedians(const Grid<T>& x, std::size_t size, EdgeMode mode) {
  Grid<T> actual = x;
  const bool fits = mode != EdgeMode::kMirror || size / 2 < std::min(x.rows, x.cols);
  ASSERT_EQ(MedianFilter(actual.Span(), size, mode), fits);
  for (std::size_t k = 0; k < x.values.size(); ++k) {
    const T expected =
        fits ? MedianOf(WindowAt(x, size, size / 2, mode, k / x.cols, k % x.cols)) : x.values[k];
    const T tiny = std::floating_point<T> ? std::numeric_limits<T>::denorm_min() : T{0};
    ASSERT_TRUE(Same(actual.values[k], expected) ||
                std::fabs(static_cast<double>(actual.values[k] - expected)) <=
                    static_cast<double>(tiny))
        << x.rows << " by " << x.cols << ", size " << size << ", mode " << static_cast<int>(mode)
        << ", element " << k << ": " << +actual.values[k] << ", expected " << +expected;
  }
}

template <class T>
class MedianFilterTest : public ::testing::Test {};
TYPED_TEST_SUITE(MedianFilterTest, MatrixElementTypes);

TYPED_TEST(MedianFilterTest, SortsWindows) {
  using T = TypeParam;
  unsigned seed = 0;
  for (const auto& [rows, cols] :
       {std::array<std::size_t, 2>{1, 1}, {3, 3}, {1, 40}, {41, 2}, {17, 19}, {9, 150}}) {
    for (const std::size_t size : {3, 4, 5, 6, 7, 9, 16, 35}) {
      for (const EdgeMode mode : {EdgeMode::kZeros, EdgeMode::kMirror, EdgeMode::kRepeat}) {
        if (rows * cols * size * size > 300000) continue;
        const std::size_t n = rows * cols;
        ExpectMedians(Grid<T>(rows, cols,
                              ++seed % 3 == 0 ? SampleValues<T>(n, seed)
                                              : RandomElements<T>(n, seed % 2, seed)),
                      size, mode);
      }
    }
  }
}

TYPED_TEST(MedianFilterTest, GoesOnFromTileToTile) {
  using T = TypeParam;
  ExpectMedians(Grid<T>(300, 6, RandomElements<T>(1800, false, 1)), 3, EdgeMode::kMirror);
  ExpectMedians(Grid<T>(5, 1100, RandomElements<T>(5500, false, 2)), 5, EdgeMode::kRepeat);
  ExpectMedians(Grid<T>(270, 8, RandomElements<T>(2160, false, 3)), 7, EdgeMode::kZeros);
  ExpectMedians(Grid<T>(8, 1100, RandomElements<T>(8800, false, 4)), 7, EdgeMode::kMirror);
}

TEST(MedianFilterSizeTest, WindowsFarLargerThanTheMatrix) {
  const Grid<int> x(3, 3, {5, 1, 1, 1, 1, 1, 1, 1, 9});
  Grid<int> zeros = x, repeated = x;
  ASSERT_TRUE(MedianFilter(zeros.Span(), 100000, EdgeMode::kZeros));
  EXPECT_EQ(zeros.values, std::vector<int>(9, 0));
  // The corners 5, 1, 1 and 9 are a quarter of each window.
  ASSERT_TRUE(MedianFilter(repeated.Span(), 100001, EdgeMode::kRepeat));
  EXPECT_EQ(repeated.values, std::vector<int>(9, 1));
  EXPECT_THROW(MedianFilter(repeated.Span(), std::size_t{1} << 40, EdgeMode::kRepeat),
               std::length_error);
  EXPECT_FALSE(MedianFilter(repeated.Span(), 3, EdgeMode{7}));
  EXPECT_FALSE(MedianFilter(repeated.Span(), 6, EdgeMode::kMirror));
}

TEST(MedianFilterTiesTest, TellsDoublesApartThatDifferInTheLastPlace) {
  std::vector<double> values(21 * 21);
  for (std::size_t k = 0; k < values.size(); ++k) {
    values[k] = std::ldexp(1.0 + std::ldexp(static_cast<double>(k * 7919 % 441), -52), 3);
  }
  ExpectMedians(Grid<double>(21, 21, values), 7, EdgeMode::kRepeat);
}

}  // namespace
}  // namespace vela::kernel

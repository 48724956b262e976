#include "kernel/morphology.h"

#include <random>

#include "tests/kernel/samples.h"
#include "tests/kernel/windows.h"

namespace vela::kernel {
namespace {

template <class T>
T ExtremumAt(const Grid<T>& x, const StructuringElement& element, bool dilate, std::size_t r,
             std::size_t c) {
  bool found = false;
  T extremum = std::is_same_v<T, double> ? static_cast<T>(kMissing) : static_cast<T>(kNaN);
  for (std::size_t k = 0; k < element.mask.size(); ++k) {
    if (element.mask[k] == 0) continue;
    const auto i = static_cast<std::ptrdiff_t>(k / element.cols - element.rows / 2);
    const auto j = static_cast<std::ptrdiff_t>(k % element.cols - element.cols / 2);
    const std::ptrdiff_t row = static_cast<std::ptrdiff_t>(r) + (dilate ? -i : i);
    const std::ptrdiff_t col = static_cast<std::ptrdiff_t>(c) + (dilate ? -j : j);
    if (row < 0 || col < 0 || row >= std::ssize(x.values) / static_cast<std::ptrdiff_t>(x.cols) ||
        col >= static_cast<std::ptrdiff_t>(x.cols)) {
      continue;
    }
    const T value =
        x.values[static_cast<std::size_t>(row) * x.cols + static_cast<std::size_t>(col)];
    if (IsMissing(value) || std::isnan(value)) continue;
    extremum = !found ? value : dilate ? std::max(extremum, value) : std::min(extremum, value);
    found = true;
  }
  return extremum;
}

// Full, random, a disc, a line with a gap, one cell away from the origin.
StructuringElement ElementOf(std::size_t rows, std::size_t cols, int kind) {
  StructuringElement element{rows, cols, std::vector<unsigned char>(rows * cols, kind != 4)};
  std::mt19937 engine(static_cast<unsigned>(rows * 31 + cols));
  for (std::size_t k = 0; k < rows * cols; ++k) {
    const double i = static_cast<double>(k / cols) - static_cast<double>(rows / 2);
    const double j = static_cast<double>(k % cols) - static_cast<double>(cols / 2);
    if (kind == 1) element.mask[k] = engine() % 3 == 0;
    if (kind == 2) element.mask[k] = i * i + j * j <= static_cast<double>(rows * cols) / 4;
    if (kind == 3) element.mask[k] = i == 0 && k % cols != 1;
  }
  if (kind == 4) element.mask[0] = 1;
  return element;
}

template <class T>
void ExpectExtrema(const Grid<T>& x, const StructuringElement& element) {
  for (const bool dilate : {false, true}) {
    Grid<T> actual = x;
    if (dilate) {
      Dilate(actual.Span(), element);
    } else {
      Erode(actual.Span(), element);
    }
    for (std::size_t k = 0; k < x.values.size(); ++k) {
      const T expected = ExtremumAt(x, element, dilate, k / x.cols, k % x.cols);
      ASSERT_TRUE(Same(actual.values[k], expected))
          << x.rows << " by " << x.cols << ", element " << element.rows << " by " << element.cols
          << (dilate ? ", dilated " : ", eroded ") << k << ": " << actual.values[k] << ", expected "
          << expected;
    }
  }
}

template <class T>
class MorphologyTest : public ::testing::Test {};
using FloatingTypes = ::testing::Types<float, double>;
TYPED_TEST_SUITE(MorphologyTest, FloatingTypes);

TYPED_TEST(MorphologyTest, FindsExtremaOfWindows) {
  using T = TypeParam;
  unsigned seed = 0;
  for (const auto& [rows, cols] :
       {std::array<std::size_t, 2>{1, 1}, {1, 90}, {70, 2}, {20, 37}, {45, 23}}) {
    for (const auto& [height, width] : {std::array<std::size_t, 2>{1, 1},
                                        {3, 3},
                                        {2, 4},
                                        {1, 9},
                                        {7, 1},
                                        {5, 7},
                                        {6, 19},
                                        {15, 40},
                                        {99, 151}}) {
      for (int kind = 0; kind < 5; ++kind) {
        if (rows * cols * height * width > 1000000) continue;
        const std::size_t n = rows * cols;
        ExpectExtrema(
            Grid<T>(rows, cols,
                    ++seed % 2 == 0 ? SampleValues<T>(n, seed) : RandomElements<T>(n, false, seed)),
            ElementOf(height, width, kind));
      }
    }
  }
}

TYPED_TEST(MorphologyTest, TellsInfinityFromNothing) {
  using T = TypeParam;
  // The infinities come after the first band.
  const std::size_t rows = 700, cols = 120;
  std::vector<T> values(
      rows * cols, std::is_same_v<T, double> ? static_cast<T>(kMissing) : static_cast<T>(kNaN));
  values[7] = 1;
  for (const double infinity : {kInf, -kInf}) {
    values[650 * cols + 60] = values[650 * cols + 3] = static_cast<T>(infinity);
    for (const int kind : {0, 2}) ExpectExtrema(Grid<T>(rows, cols, values), ElementOf(3, 5, kind));
  }
}

TEST(MorphologyEmptyTest, ElementsWithoutCellsLeaveNothing) {
  Grid<double> x(1, 2, {1, 2});
  Dilate(x.Span(), {2, 2, {0, 0, 0, 0}});
  EXPECT_EQ(x.values, (std::vector<double>{kMissing, kMissing}));
}

}  // namespace
}  // namespace vela::kernel

#include <algorithm>
#include <cfloat>
#include <random>

#include "kernel/mean.h"
#include "kernel/median.h"
#include "kernel/min_max.h"
#include "kernel/product.h"
#include "kernel/sum.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

template <class T>
class ReductionTest : public ::testing::Test {};
TYPED_TEST_SUITE(ReductionTest, ElementTypes);

TYPED_TEST(ReductionTest, SumIsAsAccurateAsALoop) {
  for (auto& sample : Samples<TypeParam>()) {
    Unaligned<TypeParam> x(sample);
    long double expected = 0, size = 0;
    for (const TypeParam value : x.span()) {
      if (IsMissing(value)) continue;
      expected += static_cast<double>(value);
      size += std::fabs(static_cast<double>(value));
    }
    const double sum = Sum(std::span<const TypeParam>(x.span()));
    if (std::isfinite(static_cast<double>(size))) {
      EXPECT_LE(std::fabs(static_cast<double>(sum - expected)),
                static_cast<double>(size) * DBL_EPSILON * 8)
          << sample.size();
    } else {
      EXPECT_TRUE(Same(sum, static_cast<double>(expected))) << sample.size();
    }
  }
}

// Numbers that cancel each other but for a small total: adding them one by one loses it.
TEST(SumTest, KeepsWhatCancellationLeaves) {
  for (const std::size_t pairs : {10u, 1000u, 50'000u}) {
    std::mt19937_64 engine(pairs);
    std::vector<double> x = {1.0, 0x1p-20};
    for (std::size_t k = 0; k < pairs; ++k) {
      x.push_back(std::ldexp(static_cast<float>(engine()), static_cast<int>(engine() % 40) - 64));
      x.push_back(-x.back());
    }
    std::shuffle(x.begin(), x.end(), engine);
    EXPECT_NEAR(Sum(std::span<const double>(x)), 1.0 + 0x1p-20, 1e-12) << pairs;
    const std::vector<float> floats(x.begin(), x.end());
    EXPECT_NEAR(Sum(std::span<const float>(floats)), 1.0 + 0x1p-20, 1e-12) << pairs;
  }
}

TEST(SumTest, IsFiniteWhereTheTotalIs) {
  std::vector<double> x;
  for (int k = 0; k < 1000; ++k) x.insert(x.end(), {1e308, -1e308});
  EXPECT_EQ(Sum(std::span<const double>(x)), 0.0);
  x.push_back(3.5e300);
  EXPECT_EQ(Sum(std::span<const double>(x)), 3.5e300);
  x[500] = kMissing;
  EXPECT_EQ(Sum(std::span<const double>(x)), -1e308 + 3.5e300);
  x.resize(20, 1e308);
  std::fill(x.begin(), x.end(), 1e308);
  EXPECT_EQ(Sum(std::span<const double>(x)), kInf);
  x[7] = -kInf;
  EXPECT_EQ(Sum(std::span<const double>(x)), -kInf);
}

TEST(SumTest, FloatsNearTheMissingValueAreNumbers) {
  const std::vector<float> x = {1.0f, static_cast<float>(kMissing)};
  EXPECT_EQ(MinMax(std::span<const float>(x)).count, 2u);
  EXPECT_EQ(Product(std::span<const float>(x), true, false).used, 2u);
}

// The rules, one element at a time.
template <class T>
MinMaxResult MinMaxReference(std::span<const T> x) {
  MinMaxResult result;
  const auto at = [&](std::ptrdiff_t k) { return x[static_cast<std::size_t>(k)]; };
  for (std::size_t k = 0; k < x.size(); ++k) {
    if (IsMissing(x[k])) continue;
    ++result.count;
    const auto here = static_cast<std::ptrdiff_t>(k);
    if (result.min_index < 0 || at(result.min_index) > x[k]) result.min_index = here;
    if (result.max_index < 0 || x[k] > at(result.max_index)) result.max_index = here;
  }
  if (result.count > 0) {
    result.min = static_cast<double>(at(result.min_index));
    result.max = static_cast<double>(at(result.max_index));
  }
  return result;
}

TYPED_TEST(ReductionTest, MinMaxFindsFirstPositions) {
  for (auto& sample : Samples<TypeParam>()) {
    Unaligned<TypeParam> copy(sample);
    const std::span<const TypeParam> x = copy.span();
    const MinMaxResult expected = MinMaxReference(x), result = MinMax(x);
    EXPECT_TRUE(Same(result.min, expected.min) && Same(result.max, expected.max)) << x.size();
    EXPECT_EQ(result.min_index, expected.min_index) << x.size();
    EXPECT_EQ(result.max_index, expected.max_index) << x.size();
    EXPECT_EQ(result.count, expected.count) << x.size();
  }
}

TEST(MinMaxTest, SixtyFourBitIntegersCompareExactly) {
  std::vector<std::int64_t> x(100, std::int64_t{1} << 60);
  x[40] += 1;
  x[70] -= 1;
  const MinMaxResult result = MinMax(std::span<const std::int64_t>(x));
  EXPECT_EQ(result.max_index, 40);
  EXPECT_EQ(result.min_index, 70);
}

TEST(ProductTest, Rules) {
  const struct {
    std::vector<double> x;
    bool skip_missing, guard;
    double value;
    std::size_t used;
  } cases[] = {
      {{}, true, false, kMissing, 0},
      {{kMissing, kMissing}, true, false, kMissing, 0},
      {{kMissing, 3, 4}, true, false, 12, 2},
      {{2, kMissing}, false, false, 2 * kMissing, 2},
      {{2, kNaN, kMissing}, true, true, kNaN, 2},
      {{1e300, 1e10}, true, false, kInf, 2},
      {{1e300, 1e10, 0}, true, true, kMissing, 3},
      {{1e300, 1e8}, true, true, 1e308, 2},
      {{1e300, 1e300, 1e-300}, true, false, kInf, 3},
      {{0.5, DBL_MAX}, true, true, DBL_MAX / 2, 2},
  };
  for (const auto& [x, skip_missing, guard, value, used] : cases) {
    const ProductResult result = Product(std::span<const double>(x), skip_missing, guard);
    EXPECT_TRUE(Same(result.value, value)) << result.value << " is not " << value;
    EXPECT_EQ(result.used, used);
  }
}

template <class T>
double MedianReference(std::vector<T> x) {
  if (x.empty()) return kMissing;
  const auto ranked = [&](std::size_t rank) {
    const auto place = x.begin() + static_cast<std::ptrdiff_t>(rank);
    std::nth_element(x.begin(), place, x.end(),
                     [](T a, T b) { return a < b || (a == a && b != b); });
    return *place;
  };
  const T upper = ranked(x.size() / 2), lower = ranked((x.size() - 1) / 2);
  if (IsMissing(upper) || IsMissing(lower)) return 0;
  const double sum = static_cast<double>(upper) + static_cast<double>(lower);
  if (x.size() % 2 == 1) return static_cast<double>(upper);
  return IsMissing(sum) ? 0 : sum / 2;
}

TYPED_TEST(ReductionTest, MeanAndMedianOfSamples) {
  for (const auto& sample : Samples<TypeParam>()) {
    const std::span<const TypeParam> x(sample);
    const double median = Median(x), expected = MedianReference(sample);
    EXPECT_TRUE(Same(median, expected)) << x.size() << ": " << median << ", not " << expected;
    const std::size_t count = x.size() - static_cast<std::size_t>(std::count(
                                             x.begin(), x.end(), static_cast<TypeParam>(kMissing)));
    if constexpr (std::same_as<TypeParam, double>) {
      const double mean = Mean(x);
      EXPECT_TRUE(Same(mean, count == 0 ? kMissing : Sum(x) / static_cast<double>(count)));
    }
  }
  const std::vector<TypeParam> three = {1, 2, 6};
  EXPECT_EQ(Mean(std::span<const TypeParam>(three)), 3);
  EXPECT_EQ(Mean(std::span<const TypeParam>()), kMissing);
}

// More elements than are sorted, of shapes that mislead a sample or leave nothing to collect.
TYPED_TEST(ReductionTest, MedianOfManyElements) {
  using T = TypeParam;
  const std::size_t n = 300'000;
  for (const std::size_t size : {n, n + 1}) {
    std::vector<std::vector<T>> shapes(6, std::vector<T>(size));
    shapes[0] = RandomElements<T>(size, false, 1);
    shapes[1] = RandomElements<T>(size, true, 2);
    for (std::size_t i = 0; i < size; ++i) {
      shapes[2][i] = static_cast<T>(i % 1000 < 3 ? 100 : 5);
      shapes[3][i] = static_cast<T>(i);
      shapes[4][i] = static_cast<T>(2 * i < size ? 3 : 8);
      shapes[5][i] = static_cast<T>(i % 2 == 0 ? kNaN : static_cast<double>(i % 97));
    }
    for (const auto& x : shapes) {
      EXPECT_TRUE(Same(Median(std::span<const T>(x)), MedianReference(x)));
    }
    if constexpr (std::same_as<T, double>) {
      std::fill_n(shapes[3].begin(), size / 2 + 1, kMissing);
      EXPECT_EQ(Median(std::span<const T>(shapes[3])), 0);
      shapes[3][0] = -1;
      shapes[3][1] = 1;
      EXPECT_EQ(Median(std::span<const T>(shapes[3])), MedianReference(shapes[3]));
    }
  }
}

}  // namespace
}  // namespace vela::kernel

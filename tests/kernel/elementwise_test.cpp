#include <algorithm>
#include <span>

#include "kernel/abs.h"
#include "kernel/compact.h"
#include "kernel/convert.h"
#include "kernel/difference.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

template <class T>
class ElementwiseTest : public ::testing::Test {};
TYPED_TEST_SUITE(ElementwiseTest, ElementTypes);

TYPED_TEST(ElementwiseTest, DifferenceIsTakenOfDoubles) {
  using T = TypeParam;
  for (const std::size_t size : SampleLengths()) {
    if (size == 0) continue;
    std::vector<T> x = SampleValues<T>(size, 1);
    std::vector<T> expected;
    for (std::size_t i = 1; i < size; ++i) {
      expected.push_back(
          ConvertElement<T>(static_cast<double>(x[i]) - static_cast<double>(x[i - 1])));
    }
    std::vector<T> apart(size - 1);
    Difference<T>(x, apart);
    ExpectSame(apart, expected);

    Difference<T>(x, std::span(x).first(size - 1));
    x.pop_back();
    ExpectSame(x, expected);
  }
}

TYPED_TEST(ElementwiseTest, AbsNegatesWhatIsBelowZero) {
  using T = TypeParam;
  for (const std::size_t size : SampleLengths()) {
    std::vector<T> x = SampleValues<T>(size, 2);
    std::vector<T> expected = x;
    for (T& value : expected) {
      const bool lowest = value == std::numeric_limits<T>::lowest();
      if (value < 0 && !IsMissing(value)) {
        value = lowest ? std::numeric_limits<T>::max() : static_cast<T>(0 - value);
      }
    }
    Abs<T>(x);
    ExpectSame(x, expected);
  }
}

TEST(AbsTest, KeepsMissingNanAndMinusZero) {
  std::vector<double> x = {kMissing,
                           -0.0,
                           -1.5,
                           -std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::quiet_NaN(),
                           -1e-300};
  Abs<double>(x);
  EXPECT_TRUE(std::signbit(x[4]));
  ExpectSame(x, {kMissing, -0.0, 1.5, std::numeric_limits<double>::infinity(),
                 std::numeric_limits<double>::quiet_NaN(), 1e-300});
}

TYPED_TEST(ElementwiseTest, OnlyDoublesHaveMissingValuesToCompact) {
  using T = TypeParam;
  std::vector<T> x = {static_cast<T>(kMissing), T{1}, static_cast<T>(kMissing)};
  const bool can_be_missing = std::same_as<T, double>;
  EXPECT_EQ(CountLeadingMissing<T>(x), can_be_missing ? 1u : 0u);
  EXPECT_EQ(CountTrailingMissing<T>(x), can_be_missing ? 1u : 0u);
  EXPECT_EQ(RemoveMissing<T>(x), can_be_missing ? 1u : 3u);
  EXPECT_EQ(x[can_be_missing ? 0 : 1], T{1});
}

TEST(CompactTest, FindsMissingValuesAtBothEndsAndBetween) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    std::vector<double> x;
    std::size_t leading, trailing;
    std::vector<double> kept;
  } cases[] = {
      {{}, 0, 0, {}},
      {{kMissing}, 1, 1, {}},
      {{kMissing, kMissing, kMissing}, 3, 3, {}},
      {{1, 2}, 0, 0, {1, 2}},
      {{kMissing, 1, kMissing, kMissing, 2, kMissing, kMissing}, 1, 2, {1, 2}},
      {{nan, kMissing, nan}, 0, 0, {nan, nan}},
      {{kMissing, -0.0, -kMissing}, 1, 0, {-0.0, -kMissing}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(CountLeadingMissing<double>(c.x), c.leading);
    EXPECT_EQ(CountTrailingMissing<double>(c.x), c.trailing);
    std::vector<double> x = c.x;
    x.resize(RemoveMissing<double>(x));
    ExpectSame(x, c.kept);
  }
}

}  // namespace
}  // namespace vela::kernel

#include "kernel/sequence.h"

#include <cmath>
#include <limits>
#include <optional>
#include <vector>

#include "kernel/convert.h"
#include "kernel/pattern.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kIntMax = 2147483647.0;

TEST(SequenceTest, CountsAndEnds) {
  const struct {
    double from, to, increment;
    int count;
    double last;
  } cases[] = {
      {0, 1, 0.25, 5, 1},
      {0, 1, 0.1, 11, 1},
      {0, 1, 0.3, 4, 3 * 0.3},
      {1, 0, -0.5, 3, 0},
      {5, 5, 1, 1, 5},
      {5, 5, -1, 1, 5},
      {0, -0.5, 1, 0, 0},
      {0, 1, -1, 0, 0},
      {0, -3, 1, 0, 0},
      // Within and outside the tolerance of 1e-10 steps.
      {0, 3 - 5e-11, 1, 4, 3 - 5e-11},
      {0, 3 - 2e-10, 1, 3, 2},
      {0, 3 + 5e-11, 1, 4, 3 + 5e-11},
      {0, 3 + 2e-10, 1, 4, 3},
      {0, 7, 100, 1, 0},
      {1, kIntMax, 1, 2147483647, kIntMax},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.from << " to " << c.to << " by " << c.increment);
    const std::optional<std::int32_t> count = SequenceCount(c.from, c.to, c.increment);
    EXPECT_EQ(count, c.count);
    if (c.count > 0) {
      EXPECT_EQ(SequenceLast(c.from, c.to, c.increment, c.count), c.last);
    }
  }
  const struct {
    double from, to, increment;
  } without[] = {{0, kIntMax, 1},   {0, 1, 1e-300}, {0, 1, 0},    {1, 1, 0},
                 {0, kInfinity, 1}, {0, 1, kNan},   {kNan, 1, 1}, {-1.7e308, 1.7e308, 1e300}};
  for (const auto& [from, to, increment] : without) {
    EXPECT_EQ(SequenceCount(from, to, increment), std::nullopt) << from << ' ' << to;
  }
}

template <class T>
class FillTest : public ::testing::Test {};
TYPED_TEST_SUITE(FillTest, ElementTypes);

TYPED_TEST(FillTest, ComputesEachValueOfASequenceFromItsIndex) {
  using T = TypeParam;
  for (const std::size_t size : SampleLengths()) {
    std::vector<T> x(size);
    FillSequence<T>(x, -3.7, 0.3, 1e9);
    std::vector<T> expected(size);
    for (std::size_t i = 0; i < size; ++i) {
      const double value = -3.7 + static_cast<double>(i) * 0.3;
      expected[i] = ConvertElement<T>(i + 1 == size ? 1e9 : value);
    }
    ExpectSame(x, expected);
  }
}

TYPED_TEST(FillTest, RepeatsLevelsAndBlocks) {
  using T = TypeParam;
  const Pattern pattern = {1, 1, 2, 2};
  const struct {
    std::size_t room;
    std::uint32_t size;
    std::vector<T> expected;
  } cases[] = {
      {12, 12, {1, 1, 2, 2, 3, 3, 1, 1, 2, 2, 3, 3}},
      {3, 12, {1, 1, 2}},
      {8, 12, {1, 1, 2, 2, 3, 3, 1, 1}},
      {9, 12, {1, 1, 2, 2, 3, 3, 1, 1, 2}},
      {20, 12, {1, 1, 2, 2, 3, 3, 1, 1, 2, 2, 3, 3}},
      // A size that is no multiple of the repeats loses the remainder.
      {20, 11, {1, 1, 2, 2, 1, 1, 2, 2}},
      {20, 3, {}},
      {20, 0, {}},
      {0, 12, {}},
  };
  for (const auto& c : cases) {
    std::vector<T> x(c.room, T{77});
    const std::size_t written = FillPattern<T>(x, pattern, c.size);
    std::vector<T> expected = c.expected;
    EXPECT_EQ(written, expected.size());
    expected.resize(c.room, T{77});
    ExpectSame(x, expected);
  }
}

TEST(PatternTest, MeasuresWithoutOverflow) {
  EXPECT_EQ(PatternSize({1, 1, 2, 2}, 3), 12);
  EXPECT_EQ(PatternSize({3, 1, 2, 2}, 1), 0);
  EXPECT_EQ(PatternSize({0, 1, 1 << 16, 1 << 15}, 0), std::nullopt);
  EXPECT_EQ(PatternSize({0, 1, 1 << 15, 1 << 15}, 0), 1 << 30);
  EXPECT_EQ(PatternSize({0, 1, 2147483647, 2147483647}, 2147483000), std::nullopt);
  EXPECT_EQ(PatternSize({0, 0, 1, 1}, 1), std::nullopt);
}

}  // namespace
}  // namespace vela::kernel

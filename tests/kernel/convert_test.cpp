#include "kernel/convert.h"

#include <algorithm>
#include <span>

#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

// The conversion as a chain of comparisons in a type that holds every operand exactly.
template <class To, class From>
To Expected(From value) {
  if constexpr (std::floating_point<To>) {
    return static_cast<To>(value);
  } else {
    const auto exact = static_cast<long double>(value);
    if (exact != exact) return 0;
    if (exact >= static_cast<long double>(std::numeric_limits<To>::max())) {
      return std::numeric_limits<To>::max();
    }
    if (exact <= static_cast<long double>(std::numeric_limits<To>::min())) {
      return std::numeric_limits<To>::min();
    }
    return static_cast<To>(exact);
  }
}

template <class To, class From>
void CheckPair() {
  for (const From value : EdgeValues<From>()) {
    EXPECT_TRUE(SameValue(ConvertElement<To>(value), Expected<To>(value)))
        << +value << " gives " << +ConvertElement<To>(value);
  }
  // Runs of every length from the second element of a longer buffer: not on a vector boundary, and
  // with elements on both sides that must stay.
  const std::size_t room = SampleLengths().back() + 2;
  const auto buffer = SampleValues<From>(room, 1);
  for (const std::size_t size : SampleLengths()) {
    const std::span<const From> source = std::span(buffer).subspan(1, size);
    std::vector<To> target(room, To{42});
    Convert<To, From>(source, std::span(target).subspan(1, size));
    std::vector<To> expected(room, To{42});
    std::transform(source.begin(), source.end(), expected.begin() + 1,
                   [](From value) { return Expected<To>(value); });
    ExpectSame(target, expected);
  }
}

template <class T>
class ConvertTest : public ::testing::Test {};
TYPED_TEST_SUITE(ConvertTest, ElementTypes);

TYPED_TEST(ConvertTest, AgreesWithTheExactValueForEveryTarget) {
  CheckPair<char, TypeParam>();
  CheckPair<unsigned char, TypeParam>();
  CheckPair<short, TypeParam>();
  CheckPair<unsigned short, TypeParam>();
  CheckPair<int, TypeParam>();
  CheckPair<unsigned int, TypeParam>();
  CheckPair<float, TypeParam>();
  CheckPair<double, TypeParam>();
  CheckPair<std::int64_t, TypeParam>();
  CheckPair<std::uint64_t, TypeParam>();
}

template <class To, class From>
void CheckWithoutNan() {
  for (const std::size_t size : SampleLengths()) {
    const auto source = SampleValues<From>(size, 2);
    std::vector<To> target(size);
    ConvertWithoutNan(std::span<const From>(source), std::span(target));
    std::vector<To> expected;
    for (const From value : source) {
      expected.push_back(std::isnan(value) ? Expected<To>(kMissing) : Expected<To>(value));
    }
    ExpectSame(target, expected);
  }
}

TEST(ConvertWithoutNanTest, StoresNanAsTheMissingValue) {
  CheckWithoutNan<float, double>();
  CheckWithoutNan<double, float>();
}

TEST(ConvertElementTest, StoresMissingAsZeroOrMinusZero) {
  EXPECT_EQ(ConvertElement<int>(kMissing), 0);
  EXPECT_EQ(ConvertElement<unsigned char>(kMissing), 0);
  EXPECT_EQ(ConvertElement<std::uint64_t>(kMissing), 0u);
  EXPECT_TRUE(SameValue(ConvertElement<float>(kMissing), -0.0f));
  EXPECT_FALSE(IsMissing(ConvertElement<double>(ConvertElement<float>(kMissing))));
}

TEST(ConvertElementTest, SaturatesAtTheRangeOfTheTarget) {
  EXPECT_EQ(ConvertElement<int>(3e9), 2147483647);
  EXPECT_EQ(ConvertElement<int>(-3e9), -2147483647 - 1);
  EXPECT_EQ(ConvertElement<int>(-2.7), -2);
  EXPECT_EQ(ConvertElement<unsigned int>(3e9), 3000000000u);
  EXPECT_EQ(ConvertElement<unsigned int>(-0.5), 0u);
  EXPECT_EQ(ConvertElement<char>(300), 127);
  EXPECT_EQ(ConvertElement<unsigned short>(-1), 0);
  EXPECT_EQ(ConvertElement<std::int64_t>(~std::uint64_t{0}),
            std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(ConvertElement<std::int64_t>(0x1p63f), std::numeric_limits<std::int64_t>::max());
}

TEST(ConvertTest, CopiesOneTypeInPlace) {
  std::vector<double> x = SampleValues<double>(100, 1);
  const std::vector<double> before = x;
  Convert<double, double>(x, x);
  ExpectSame(x, before);
}

}  // namespace
}  // namespace vela::kernel

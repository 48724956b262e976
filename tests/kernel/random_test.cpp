#include "kernel/random.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

#include "kernel/convert.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

// The largest distance between the share of values below a point and what the distribution has
// there, times the square root of the count: above 1.95 by chance once in a thousand.
template <class Cumulative>
double KolmogorovStatistic(std::vector<double> values, Cumulative cumulative) {
  std::sort(values.begin(), values.end());
  const auto n = static_cast<double>(values.size());
  double largest = 0;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const double share = cumulative(values[i]);
    largest = std::max({largest, std::abs(share - static_cast<double>(i) / n),
                        std::abs(share - static_cast<double>(i + 1) / n)});
  }
  return largest * std::sqrt(n);
}

TEST(RandomTest, UniformIsUniform) {
  std::vector<double> x(1000000);
  RandomSource(42).FillUniform<double>(x);
  EXPECT_GE(*std::ranges::min_element(x), 0.0);
  EXPECT_LT(*std::ranges::max_element(x), 1.0);
  EXPECT_LT(KolmogorovStatistic(x, [](double v) { return v; }), 1.95);
}

TEST(RandomTest, NormalIsNormal) {
  std::vector<double> x(1000000);
  RandomSource(43).FillNormal<double>(x);
  EXPECT_LT(KolmogorovStatistic(x, [](double v) { return 0.5 * std::erfc(-v / std::sqrt(2.0)); }),
            1.95);
  // The tail beyond the ziggurat's last edge, on both sides: a share of 2.58e-4.
  const auto high = std::ranges::count_if(x, [](double v) { return v > 3.654152885361009; });
  const auto low = std::ranges::count_if(x, [](double v) { return v < -3.654152885361009; });
  EXPECT_NEAR(static_cast<double>(high), 129, 45);
  EXPECT_NEAR(static_cast<double>(low), 129, 45);
  double fourth = 0;
  for (const double v : x) fourth += v * v * v * v;
  EXPECT_NEAR(fourth / 1e6, 3.0, 0.04);
}

TEST(RandomTest, NormalTailHasTheRightShape) {
  RandomSource source(44);
  std::vector<double> tail;
  while (tail.size() < 3000) {
    const double v = std::abs(source.Normal());
    if (v > 3.654152885361009) tail.push_back(v);
  }
  const double all = std::erfc(3.654152885361009 / std::sqrt(2.0));
  EXPECT_LT(
      KolmogorovStatistic(tail, [&](double v) { return 1 - std::erfc(v / std::sqrt(2.0)) / all; }),
      1.95);
}

TEST(RandomTest, IndicesAreEquallyLikely) {
  std::vector<std::uint32_t> x(300000);
  // The last bound repeats nearly half of all draws.
  for (const std::uint32_t bound : {1u, 2u, 3u, 10u, 1000u, 0x80000001u, 0xFFFFFFFFu}) {
    RandomSource(bound).FillIndices(x, bound);
    std::vector<double> share;
    for (const std::uint32_t index : x) {
      ASSERT_LT(index, bound);
      share.push_back(static_cast<double>(index));
    }
    if (bound <= 1000) {
      std::vector<double> counts(bound);
      for (const std::uint32_t index : x) counts[index] += 1;
      const double expected = 300000.0 / bound;
      double chi_square = 0;
      for (const double count : counts)
        chi_square += (count - expected) * (count - expected) / expected;
      EXPECT_LT(chi_square, bound - 1 + 5 * std::sqrt(2.0 * bound)) << bound;
    } else {
      EXPECT_LT(KolmogorovStatistic(share, [&](double v) { return v / bound; }), 1.95) << bound;
    }
  }
  RandomSource(1).FillIndices(x, 0);
  EXPECT_EQ(std::ranges::count(x, 0u), 300000);
}

TEST(RandomTest, FillDrawsTheSameAsSingleCalls) {
  RandomSource filled(5);
  RandomSource single(5);
  for (const std::size_t size : {0u, 1u, 7u, 600u, 5u}) {
    std::vector<double> x(size);
    filled.FillUniform<double>(x);
    for (const double value : x) ASSERT_EQ(value, single.Uniform());
    filled.FillNormal<double>(x);
    for (const double value : x) ASSERT_EQ(value, single.Normal());
  }
  std::vector<int> integers(1500);
  filled.FillNormal<int>(integers);
  for (const int value : integers) ASSERT_EQ(value, ConvertElement<int>(single.Normal()));
}

TEST(RandomTest, EverySeedIsAStreamOfItsOwn) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(RandomSource(0).Uniform(), RandomSource(-0.0).Uniform());
  EXPECT_EQ(RandomSource(nan).Uniform(), RandomSource(-nan).Uniform());
  std::vector<double> firsts;
  for (const double seed : {0.0, 1.0, 2.0, 3.0, -1.0, 0.5, 1e300, kMissing, nan,
                            std::numeric_limits<double>::infinity()}) {
    firsts.push_back(RandomSource(seed).Uniform());
  }
  std::sort(firsts.begin(), firsts.end());
  EXPECT_EQ(std::adjacent_find(firsts.begin(), firsts.end()), firsts.end());
  RandomSource source(9);
  const double first = source.Uniform();
  source.Normal();
  source.Seed(9);
  EXPECT_EQ(source.Uniform(), first);
}

// Scripts rely on a seed giving these values on every platform and in every release.
TEST(RandomTest, KeepsItsValues) {
  RandomSource source(12345);
  for (const double value : {0x1.0d0daa4614b8cp-1, 0x1.d8d515d521976p-1, 0x1.416f14a5871c8p-2,
                             0x1.c0068bc6514f8p-4, 0x1.f4498d364c4cfp-1}) {
    EXPECT_EQ(source.Uniform(), value);
  }
  std::vector<std::uint32_t> indices(6);
  source.FillIndices(indices, 1000);
  EXPECT_EQ(indices, (std::vector<std::uint32_t>{778, 956, 203, 651, 897, 39}));

  source.Seed(12345);
  for (const double value : {0x1.11c5ede7a1078p+0, 0x1.9ce92bc0e8e66p-1, 0x1.1bb4681648a0bp-2,
                             0x1.48aaf80a1b1b7p-2, 0x1.794ac56b36fe7p+0}) {
    EXPECT_EQ(source.Normal(), value);
  }
  // Many enough to meet the wedges and the tail, where values are computed by exp and log.
  std::uint64_t digest = 0;
  for (int i = 0; i < 1000000; ++i) {
    digest = digest * 1099511628211u + std::bit_cast<std::uint64_t>(source.Normal());
  }
  EXPECT_EQ(digest, 0x64BBFD479094CF53u);
}

}  // namespace
}  // namespace vela::kernel

#include "kernel/moving_average.h"

#include <algorithm>

#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

// The mean of one window, and how far rounding may have taken it from the true one.
struct Expected {
  double mean, tolerance;
};

Expected WindowMean(std::span<const double> window) {
  long double sum = 0, size = 0;
  int count = 0;
  for (const double value : window) {
    if (IsMissing(value)) continue;
    sum += value;
    size += std::fabs(value);
    ++count;
  }
  if (count == 0) return {kMissing, 0.0};
  return {static_cast<double>(sum / count),
          static_cast<double>(size) * 1e-16 * static_cast<double>(window.size()) / count};
}

void ExpectWindowMeans(std::span<const double> x, std::size_t half) {
  std::vector<double> out(x.size(), -1.0);
  MovingAverage(x, half, std::span(out));
  const std::size_t step = half < 10 ? 1 : half < 100 ? 3 : x.size() > 2000 ? 29 : 7;
  for (std::size_t i = 0; i < x.size(); i += step) {
    const std::size_t reach = std::min({half, i, x.size() - 1 - i});
    const Expected expected = WindowMean(x.subspan(i - reach, 2 * reach + 1));
    if (std::isfinite(expected.mean)) {
      ASSERT_LE(std::fabs(out[i] - expected.mean), expected.tolerance)
          << i << " of " << x.size() << ", half " << half;
    } else {
      ASSERT_TRUE(Same(out[i], expected.mean)) << i << " of " << x.size() << ", half " << half;
    }
  }
}

TEST(MovingAverageTest, EachWindowStandsForItself) {
  for (const auto& sample : Samples<double>()) {
    if (sample.size() > 1100) continue;
    for (const std::size_t half : {0, 1, 2, 12, 25, 60, 1000}) {
      ExpectWindowMeans(Unaligned<double>(sample).span(), half);
    }
  }
  ExpectWindowMeans(RandomElements<double>(9000, false, 3), 600);
  ExpectWindowMeans(RandomElements<double>(9000, false, 4), std::size_t(-1));
}

TEST(MovingAverageTest, LargeValuesLeaveNoTrace) {
  std::vector<double> x(500, 1.0), out(500);
  x[100] = 1e300;
  MovingAverage(x, 3, std::span(out));
  EXPECT_EQ(out[104], 1.0);
  EXPECT_EQ(out[96], 1.0);
}

TEST(MovingAverageTest, EmptyWindowsAreMissing) {
  std::vector<double> x(300, kMissing), out(300);
  x[150] = 7.0;
  MovingAverage(x, 5, std::span(out));
  for (std::size_t i = 0; i < x.size(); ++i) {
    EXPECT_EQ(out[i], i >= 145 && i <= 155 ? 7.0 : kMissing) << i;
  }
}

}  // namespace
}  // namespace vela::kernel

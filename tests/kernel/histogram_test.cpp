#include "kernel/histogram.h"

#include <algorithm>
#include <stdexcept>

#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

bool NearlyEqual(double a, double b) {
  if (a == b) return true;
  if (!std::isfinite(a) || !std::isfinite(b)) return false;
  double low = std::min(a, b);
  for (int ulp = 0; ulp < 4; ++ulp) low = std::nextafter(low, kInf);
  return low >= std::max(a, b);
}

template <class T>
std::vector<int> Reference(std::span<const T> elements, const std::vector<double>& edges,
                           bool underflow, bool overflow) {
  std::vector<int> counts(FrequencyBins(edges.size(), underflow, overflow));
  const std::size_t m = edges.size();
  for (const T element : elements) {
    const double x = static_cast<double>(element);
    if (IsMissing(element)) continue;
    if (x < edges[0] && !NearlyEqual(x, edges[0])) {
      if (underflow) ++counts[0];
    } else if (x >= edges[m - 1] || NearlyEqual(x, edges[m - 1])) {
      if (overflow) ++counts.back();
    } else if (m > 1) {
      std::size_t low = 0, high = m - 1;
      while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        (x < edges[middle] && !NearlyEqual(x, edges[middle]) ? high : low) = middle;
      }
      ++counts[low + underflow];
    }
  }
  return counts;
}

std::vector<std::vector<double>> EdgeSamples() {
  std::vector<std::vector<double>> samples = {
      {0},          {-4, -3, -2, -1, 0, 1, 2, 3, 4}, {-kInf, 0, kInf}, {1, 1, 1, 2, 2, 5},
      {0.1, 1e300}, {-1e308, -1, 1, 1e308},          {5e-324, 1e-323}, {kInf},
      {-1e-320, 0}, {3, std::nextafter(3, 4), 3.5}};
  for (const std::size_t count : {2, 100, 1000}) {
    std::vector<double> even(count), uneven = RandomElements<double>(count, false, count),
                                     log = even;
    for (std::size_t k = 0; k < count; ++k) {
      even[k] = -100.0 + 0.1 * static_cast<double>(k);
      log[k] = std::exp2(static_cast<double>(k) / static_cast<double>(count) * 60 - 30);
    }
    std::sort(uneven.begin(), uneven.end());
    samples.insert(samples.end(), {even, uneven, log});
  }
  return samples;
}

template <class T>
void ExpectReferenceCounts(std::span<const T> x, const std::vector<double>& edges) {
  for (const bool underflow : {false, true}) {
    for (const bool overflow : {false, true}) {
      std::vector<int> counts(FrequencyBins(edges.size(), underflow, overflow), -1);
      FrequencyCount(x, std::span<const double>(edges), underflow, overflow, std::span(counts));
      EXPECT_EQ(counts, Reference(x, edges, underflow, overflow))
          << x.size() << " elements, " << edges.size() << " edges from " << edges[0];
    }
  }
}

template <class T>
class FrequencyCountTest : public ::testing::Test {};
TYPED_TEST_SUITE(FrequencyCountTest, ElementTypes);

TYPED_TEST(FrequencyCountTest, MatchesBinarySearch) {
  for (auto& sample : Samples<TypeParam>()) {
    if (sample.size() > 2500) continue;
    Unaligned<TypeParam> x(sample);
    for (const auto& edges : EdgeSamples()) {
      ExpectReferenceCounts(std::span<const TypeParam>(x.span()), edges);
    }
  }
}

TEST(FrequencyCountTest, EdgesAttractTheirNeighbours) {
  for (const auto& edges : EdgeSamples()) {
    std::vector<double> x;
    for (const double edge : edges) {
      double below = edge, above = edge;
      for (int ulp = 0; ulp < 8; ++ulp) {
        x.insert(x.end(), {below, above});
        below = std::nextafter(below, -kInf);
        above = std::nextafter(above, kInf);
      }
    }
    ExpectReferenceCounts(std::span<const double>(x), edges);
  }
}

TEST(FrequencyCountTest, UnusableArgumentsStayInBounds) {
  const std::vector<double> x = RandomElements<double>(3000, true, 1);
  for (const std::vector<double>& edges :
       {std::vector<double>{3, 1, 2, -8}, {kNaN, kNaN, kNaN}, {0, kNaN, 2}, {kInf, -kInf}}) {
    std::vector<int> counts(edges.size() + 1);
    FrequencyCount(std::span<const double>(x), std::span<const double>(edges), true, true,
                   std::span(counts));
    int total = 0;
    for (const int count : counts) total += count;
    EXPECT_EQ(total, 3000);
  }
  FrequencyCount(std::span<const double>(x), {}, true, true, {});
  std::vector<int> too_few(1);
  const std::vector<double> edges = {0, 1, 2};
  EXPECT_THROW(FrequencyCount(std::span<const double>(x), std::span<const double>(edges), false,
                              false, std::span(too_few)),
               std::invalid_argument);
}

}  // namespace
}  // namespace vela::kernel

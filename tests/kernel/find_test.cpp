#include "kernel/find.h"

#include <algorithm>
#include <functional>

#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

using Indices = std::vector<std::uint32_t>;

// Runs a search into as many slots as there are elements, and into too few; compares both with the
// indices of the elements for which matches(x) holds.
template <class T, class Search>
void ExpectMatches(std::span<const T> x, FindScope scope,
                   const std::function<bool(double, bool)>& matches, Search search) {
  Indices expected;
  for (std::size_t k = scope.start; k < std::min(scope.end, x.size()); ++k) {
    if (!matches(static_cast<double>(x[k]), IsMissing(x[k]))) continue;
    expected.push_back(static_cast<std::uint32_t>(k));
    if (scope.first_only) break;
  }
  Indices found(x.size());
  ASSERT_EQ(search(scope, std::span(found)), expected.size());
  found.resize(expected.size());
  EXPECT_EQ(found, expected);

  Indices few(expected.size() / 2);
  EXPECT_EQ(search(scope, std::span(few)), expected.size());
  expected.resize(few.size());
  EXPECT_EQ(few, expected);
}

template <class T>
class FindTest : public ::testing::Test {};
TYPED_TEST_SUITE(FindTest, ElementTypes);

TYPED_TEST(FindTest, MatchesALoop) {
  const FindScope scopes[] = {{}, {3, 70}, {0, 1u << 30, true}, {5, 5}, {9, 2}, {1u << 30}};
  const struct {
    double value, tolerance;
  } equalities[] = {{2, 0},    {2, 1.5},    {0, 1e-6},  {kMissing, 0}, {kMissing, 0.1},
                    {kNaN, 1}, {kInf, 0.1}, {-kInf, 0}, {1e5, 2e4},    {0, -1}};
  const struct {
    double low, high;
  } ranges[] = {{1, 3}, {-kInf, kInf}, {3, 1}, {kNaN, 3}, {kMissing, 0.5}, {-1e5, 1e5}};
  for (auto& sample : Samples<TypeParam>()) {
    if (sample.size() > 2500) continue;
    Unaligned<TypeParam> copy(sample);
    const std::span<const TypeParam> x = copy.span();
    for (const FindScope& scope : scopes) {
      for (const auto& [value, tolerance] : equalities) {
        ExpectMatches(
            x, scope,
            [v = value, t = tolerance](double element, bool missing) {
              if (missing || IsMissing(v)) return missing && IsMissing(v);
              return t == 0 || std::isinf(v) ? element == v : std::fabs(element - v) <= t;
            },
            [&, v = value, t = tolerance](FindScope within, std::span<std::uint32_t> found) {
              return FindEqual(x, v, t, within, found);
            });
      }
      for (const auto& [low, high] : ranges) {
        ExpectMatches(
            x, scope,
            [l = low, h = high](double element, bool missing) {
              return !missing && l <= element && element <= h;
            },
            [&, l = low, h = high](FindScope within, std::span<std::uint32_t> found) {
              return FindInRange(x, l, h, within, found);
            });
      }
    }
  }
}

}  // namespace
}  // namespace vela::kernel

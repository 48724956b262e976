#include "kernel/sort.h"

#include <numeric>
#include <stdexcept>

#include "kernel/reorder.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

using Indices = std::vector<std::uint32_t>;

// NaN last in either order.
template <class T>
bool Before(T a, T b, bool ascending) {
  if (a != a || b != b) return b != b && a == a;
  return ascending ? a < b : b < a;
}

template <class T>
std::size_t CountNegativeZeros(std::span<const T> x) {
  return static_cast<std::size_t>(std::count_if(x.begin(), x.end(), [](T value) {
    return value == T{0} && std::signbit(static_cast<double>(value));
  }));
}

Indices Reversed(std::size_t n) {
  Indices indices(n);
  std::iota(indices.rbegin(), indices.rend(), 0u);
  return indices;
}

template <class T>
class SortTest : public ::testing::Test {};
TYPED_TEST_SUITE(SortTest, ElementTypes);

TYPED_TEST(SortTest, MatchesAStableSort) {
  for (const auto& sample : Samples<TypeParam>()) {
    for (const bool ascending : {true, false}) {
      const auto before = [&](TypeParam a, TypeParam b) { return Before(a, b, ascending); };
      std::vector<TypeParam> expected = sample;
      Indices expected_indices = Reversed(sample.size());
      SortBy(std::span(expected), std::span(expected_indices), before);

      Unaligned<TypeParam> plain(sample);
      Sort(plain.span(), ascending);
      EXPECT_TRUE(std::equal(expected.begin(), expected.end(), plain.span().begin(),
                             plain.span().end(), Same<TypeParam>))
          << sample.size();
      EXPECT_EQ(CountNegativeZeros(std::span<const TypeParam>(plain.span())),
                CountNegativeZeros(std::span<const TypeParam>(sample)));

      Unaligned<TypeParam> indexed(sample);
      Indices indices = Reversed(sample.size());
      SortWithIndices(indexed.span(), std::span(indices), ascending);
      EXPECT_TRUE(std::equal(expected.begin(), expected.end(), indexed.span().begin(),
                             indexed.span().end(), Same<TypeParam>))
          << sample.size();
      EXPECT_EQ(indices, expected_indices) << sample.size();
    }
  }
}

// Keys that agree in all but their last bits, or in their first ones but for one outlier.
TEST(SortTest, CloseValuesKeepTheirOrder) {
  std::vector<double> x;
  for (int k = 0; k < 3000; ++k) x.push_back(1.0 + 0x1p-52 * ((k * 7919) % 500));
  x[1000] = 1e300;
  x[2000] = -1e-300;
  std::vector<double> expected = x;
  Indices indices = Reversed(x.size()), expected_indices = indices;
  SortBy(std::span(expected), std::span(expected_indices), std::less<>());
  SortWithIndices(std::span(x), std::span(indices), true);
  EXPECT_EQ(x, expected);
  EXPECT_EQ(indices, expected_indices);
}

TEST(SortTest, IndicesMustMatch) {
  std::vector<int> x(3);
  Indices indices(2);
  EXPECT_THROW(SortWithIndices(std::span(x), std::span(indices), true), std::invalid_argument);
}

TEST(PartitionMissingTest, SwapsToTheAskedEnd) {
  const double m = kMissing;
  const struct {
    std::vector<double> x;
    bool to_front;
    std::vector<double> result;
    Indices indices;
  } cases[] = {
      {{3, m, 1}, true, {m, 3, 1}, {1, 0, 2}},
      {{3, m, 1}, false, {3, 1, m}, {0, 2, 1}},
      {{1, m, 2, m, 3}, true, {m, m, 2, 1, 3}, {1, 3, 2, 0, 4}},
      {{m, 1, m, 2, 3}, false, {2, 1, 3, m, m}, {3, 1, 4, 0, 2}},
      {{m, m}, false, {m, m}, {0, 1}},
      {{}, true, {}, {}},
  };
  for (const auto& [x, to_front, result, moved] : cases) {
    std::vector<double> values = x;
    Indices indices(x.size());
    std::iota(indices.begin(), indices.end(), 0u);
    EXPECT_EQ(PartitionMissing(std::span(values), std::span(indices), to_front),
              static_cast<std::size_t>(std::count(x.begin(), x.end(), m)));
    EXPECT_EQ(values, result);
    EXPECT_EQ(indices, moved);
  }
}

TEST(ReorderTest, AcceptsPermutationsOnly) {
  const struct {
    Indices order;
    bool accepted;
    std::vector<int> result;
  } cases[] = {
      {{2, 0, 1}, true, {12, 10, 11}},
      {{0, 0, 2}, false, {10, 10, 12}},
      {{1, 3, 0}, false, {11, 11, 12}},
      {{0, 1}, false, {10, 11, 12}},
  };
  for (const auto& [order, accepted, result] : cases) {
    std::vector<int> values = {10, 11, 12};
    EXPECT_EQ(Reorder(std::span(values), std::span<const std::uint32_t>(order)), accepted);
    EXPECT_EQ(values, result);
  }
}

}  // namespace
}  // namespace vela::kernel

#include "kernel/rotate.h"

#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <vector>

namespace vela::kernel {
namespace {

template <class T>
void CheckRotation(std::size_t size, std::int64_t shift) {
  std::vector<T> x(size);
  for (std::size_t i = 0; i < size; ++i) x[i] = static_cast<T>(i * 7 + i / 256);
  const std::vector<T> before = x;
  Rotate<T>(x, shift);
  const auto n = static_cast<std::int64_t>(size);
  for (std::int64_t i = 0; i < n; ++i) {
    const std::int64_t from = ((i + shift % n) % n + n) % n;
    ASSERT_EQ(x[static_cast<std::size_t>(i)], before[static_cast<std::size_t>(from)])
        << "element " << i << " of " << size << " rotated by " << shift;
  }
}

TEST(RotateTest, PutsElementShiftPlusIAtI) {
  const int low = std::numeric_limits<int>::min();
  for (const std::size_t size : {1u, 2u, 3u, 4u, 5u, 8u, 100u, 4097u}) {
    const auto n = static_cast<std::int64_t>(size);
    for (const std::int64_t shift :
         {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, n / 2, n - 1, n, n + 1, -n, -n - 1,
          std::int64_t{low}, std::int64_t{-(low + 1)}}) {
      CheckRotation<double>(size, shift);
      CheckRotation<unsigned char>(size, shift);
    }
  }
}

// Longer than the space that can be set aside, so that runs are swapped first.
TEST(RotateTest, RotatesLongRuns) {
  for (const std::size_t size : {50000u, 65536u, 100003u}) {
    const auto n = static_cast<std::int64_t>(size);
    for (const std::int64_t shift :
         {std::int64_t{5}, n / 7, n / 3, n / 2 - 1, n / 2, n / 2 + 1, 2 * n / 3, n - 2048, n - 1}) {
      CheckRotation<double>(size, shift);
      CheckRotation<std::uint16_t>(size, shift);
    }
  }
}

TEST(RotateTest, RotatesAnyTrivialType) {
  struct Point {
    double x, y, z;
  };
  std::vector<Point> points = {{1, 1, 1}, {2, 2, 2}, {3, 3, 3}};
  Rotate<Point>(points, -1);
  EXPECT_EQ(points[0].z, 3);
  EXPECT_EQ(points[1].x, 1);
}

TEST(RotateTest, LeavesAnEmptyRunAlone) { Rotate<double>({}, 3); }

}  // namespace
}  // namespace vela::kernel

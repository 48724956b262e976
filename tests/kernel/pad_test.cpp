#include "kernel/pad.h"

#include <algorithm>
#include <gtest/gtest.h>

#include "matrix_samples.h"

namespace vela::kernel {
namespace {

// The position that padded position i shows, -1 for none.
std::ptrdiff_t Source(std::ptrdiff_t i, std::ptrdiff_t count, EdgeMode mode) {
  if (mode == EdgeMode::kRepeat) return std::clamp<std::ptrdiff_t>(i, 0, count - 1);
  if (mode == EdgeMode::kMirror) return i < 0 ? -i : i >= count ? 2 * (count - 1) - i : i;
  return i < 0 || i >= count ? -1 : i;
}

template <class W>
class PadTest : public ::testing::Test {};
TYPED_TEST_SUITE(PadTest, MatrixWords);

TYPED_TEST(PadTest, ShowsTheElementThatTheModeNames) {
  for (const std::size_t rows : {0u, 1u, 2u, 3u, 9u, 33u}) {
    for (const std::size_t cols : {0u, 1u, 2u, 4u, 35u, 150u}) {
      for (const std::size_t n : {1u, 2u, 8u, 32u}) {
        for (const EdgeMode mode : {EdgeMode::kZeros, EdgeMode::kMirror, EdgeMode::kRepeat}) {
          const TestMatrix<TypeParam> x(rows, cols);
          TestMatrix<TypeParam> out(rows + 2 * n, cols + 2 * n);
          const TestMatrix<TypeParam> before = out;
          const bool possible = mode == EdgeMode::kMirror   ? n < rows && n < cols
                                : mode == EdgeMode::kRepeat ? rows > 0 && cols > 0
                                                            : true;
          ASSERT_EQ(Pad(x.Const(), n, mode, out.Span()), possible);
          EXPECT_TRUE(Holds(out.Const(), [&](std::size_t r, std::size_t c) {
            if (!possible) return before.Const()(r, c);
            const auto at = [&](std::size_t i, std::size_t count) {
              return Source(static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(n),
                            static_cast<std::ptrdiff_t>(count), mode);
            };
            const std::ptrdiff_t row = at(r, rows), col = at(c, cols);
            return row < 0 || col < 0
                       ? TypeParam{}
                       : x.Const()(static_cast<std::size_t>(row), static_cast<std::size_t>(col));
          }));
        }
      }
    }
  }
}

}  // namespace
}  // namespace vela::kernel

#include "kernel/block.h"

#include <algorithm>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "kernel/matrix_wrap.h"
#include "kernel/triangle.h"
#include "matrix_samples.h"

namespace vela::kernel {
namespace {

template <class W>
class BlockTest : public ::testing::Test {};
TYPED_TEST_SUITE(BlockTest, MatrixWords);

// Two matrices at random places of one run of elements, so that blocks overlap in every way.
TYPED_TEST(BlockTest, CopiesAsIfThroughACopy) {
  using W = TypeParam;
  std::mt19937 random(3);
  const auto draw = [&](std::size_t end) { return random() % end; };
  for (int round = 0; round < 3000; ++round) {
    const std::size_t size = round % 2 == 0 ? 4000 : 60;
    TestMatrix<W> memory(1, size);
    const auto place = [&] {
      const std::size_t cols = 1 + draw(size / 4), first = draw(size - cols);
      const std::size_t rows = 1 + draw((size - first) / cols);
      return MatrixSpan<W>(memory.Span().data + first, rows, cols);
    };
    const MatrixSpan<W> from = place(), to = place();
    const std::size_t rows = draw(std::min(from.rows, to.rows) + 1);
    const std::size_t cols = draw(std::min(from.cols, to.cols) + 1);
    const std::size_t row = draw(from.rows - rows + 1), col = draw(from.cols - cols + 1);
    const std::size_t to_row = draw(to.rows - rows + 1), to_col = draw(to.cols - cols + 1);
    const TestMatrix<W> old = memory;
    const std::size_t from_first = static_cast<std::size_t>(from.data - memory.Span().data);
    const std::size_t to_first = static_cast<std::size_t>(to.data - memory.Span().data);
    std::vector<W> expected(old.Const().data, old.Const().data + size);
    for (std::size_t r = 0; r < rows; ++r) {
      for (std::size_t c = 0; c < cols; ++c) {
        expected[to_first + (to_row + r) * to.cols + to_col + c] =
            old.Const().data[from_first + (row + r) * from.cols + col + c];
      }
    }
    CopyBlock<W>(from, row, col, to, to_row, to_col, rows, cols);
    ASSERT_TRUE(Holds(memory.Const(), [&](std::size_t, std::size_t i) { return expected[i]; }));
  }
}

TYPED_TEST(BlockTest, SelectsRowsAndColumns) {
  const TestMatrix<TypeParam> x(9, 40);
  const std::vector<std::uint32_t> rows = {8, 3, 4, 5, 5, 0}, cols = {39, 0, 7, 7, 8};
  TestMatrix<TypeParam> some_rows(rows.size(), 40), some_cols(9, cols.size());
  SelectRows<TypeParam>(x.Const(), rows, some_rows.Span());
  SelectCols<TypeParam>(x.Const(), cols, some_cols.Span());
  EXPECT_TRUE(Holds(some_rows.Const(), [&](auto r, auto c) { return x.Const()(rows[r], c); }));
  EXPECT_TRUE(Holds(some_cols.Const(), [&](auto r, auto c) { return x.Const()(r, cols[c]); }));
}

constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

TYPED_TEST(BlockTest, WrapsAroundAndSwapsHalves) {
  const auto wrapped = [](std::size_t i, std::int64_t shift, std::size_t count) {
    const auto n = static_cast<std::int64_t>(count);
    return static_cast<std::size_t>(((static_cast<std::int64_t>(i) + shift % n) % n + n) % n);
  };
  for (const auto& [rows, cols] : {std::pair{0u, 4u}, {4u, 0u}, {1u, 9u}, {9u, 1u}, {13u, 20u}}) {
    const TestMatrix<TypeParam> old(rows, cols);
    for (const std::int64_t row_shift : {std::int64_t{0}, std::int64_t{5}, kLeast, kMost}) {
      for (const std::int64_t col_shift : {std::int64_t{0}, std::int64_t{-7}, kLeast, kMost}) {
        TestMatrix<TypeParam> x = old;
        WrapMatrix(x.Span(), row_shift, col_shift);
        EXPECT_TRUE(Holds(x.Const(), [&, rows = rows, cols = cols](auto r, auto c) {
          return old.Const()(wrapped(r, row_shift, rows), wrapped(c, col_shift, cols));
        }));
      }
    }
    for (const std::size_t row_split : {0u, rows / 2, rows}) {
      for (const std::size_t col_split : {0u, (cols + 1) / 2, cols}) {
        TestMatrix<TypeParam> x = old, out(rows, cols);
        SwapHalves<TypeParam>(x.Const(), row_split, col_split, out.Span());
        SwapHalves<TypeParam>(x.Const(), row_split, col_split, x.Span());
        for (const auto& result : {x, out}) {
          EXPECT_TRUE(Holds(result.Const(), [&, rows = rows, cols = cols](auto r, auto c) {
            return old.Const()((r + row_split) % rows, (c + col_split) % cols);
          }));
        }
      }
    }
  }
}

TYPED_TEST(BlockTest, KeepsTrianglesAndDiagonals) {
  using W = TypeParam;
  for (const auto& [rows, cols] : {std::pair{0u, 3u}, {3u, 0u}, {1u, 1u}, {5u, 9u}, {9u, 5u}}) {
    for (const std::int64_t k : {kLeast, kLeast + 1, std::int64_t{-9}, std::int64_t{-4},
                                 std::int64_t{0}, std::int64_t{4}, std::int64_t{9}, kMost}) {
      const TestMatrix<W> old(rows, cols);
      TestMatrix<W> lower = old, upper = old, apart(rows, cols);
      KeepLower<W>(old.Const(), k, apart.Span());
      KeepLower<W>(lower.Const(), k, lower.Span());
      KeepUpper<W>(upper.Const(), k, upper.Span());
      // Right of the diagonal: c > r + k, without adding to a k that is too large for that.
      const auto side = [k](std::size_t r, std::size_t c) {
        const std::int64_t offset = static_cast<std::int64_t>(c) - static_cast<std::int64_t>(r);
        return offset == k ? 0 : offset > k ? 1 : -1;
      };
      const auto at = [&](bool kept, std::size_t r, std::size_t c) {
        return kept ? old.Const()(r, c) : W{};
      };
      const auto in_lower = [&](auto r, auto c) { return at(side(r, c) <= 0, r, c); };
      EXPECT_TRUE(Holds(lower.Const(), in_lower));
      EXPECT_TRUE(Holds(apart.Const(), in_lower));
      EXPECT_TRUE(Holds(upper.Const(), [&](auto r, auto c) { return at(side(r, c) >= 0, r, c); }));

      std::vector<W> diagonal(DiagonalSize(rows, cols, k));
      CopyDiagonal<W>(old.Const(), k, diagonal);
      TestMatrix<W> stored = old;
      StoreDiagonal<W>(std::vector<W>(diagonal.size()), k, stored.Span());
      std::size_t count = 0;
      EXPECT_TRUE(Holds(stored.Const(), [&](auto r, auto c) {
        const bool on = side(r, c) == 0;
        if (on) {
          EXPECT_EQ(std::memcmp(&old.Const()(r, c), &diagonal.at(count), sizeof(W)), 0);
        }
        count += on;
        return at(!on, r, c);
      }));
      EXPECT_EQ(count, diagonal.size());
    }
  }
}

}  // namespace
}  // namespace vela::kernel

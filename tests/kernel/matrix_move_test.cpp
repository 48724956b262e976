#include <cstdint>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

#include "kernel/block.h"
#include "kernel/flip.h"
#include "kernel/matrix_rotate.h"
#include "kernel/pad.h"
#include "kernel/transpose.h"
#include "matrix_samples.h"

namespace vela::kernel {
namespace {

using Shape = std::pair<std::size_t, std::size_t>;

// Shapes around the sides of blocks: squares, which move in place, and others.
std::vector<Shape> Shapes() {
  std::vector<Shape> shapes = {{0, 0},    {0, 3},    {5, 0},    {3, 1000}, {1000, 3},
                               {70, 300}, {300, 70}, {64, 256}, {256, 64}};
  for (const std::size_t a : {1u, 2u, 3u, 7u, 8u, 16u, 33u, 64u, 65u, 130u, 257u}) {
    for (const std::size_t b : {1u, 2u, 5u, 8u, 17u, 63u, 64u, 129u}) shapes.emplace_back(a, b);
    shapes.emplace_back(a, a);
  }
  return shapes;
}

template <class W>
class MatrixMoveTest : public ::testing::Test {};
TYPED_TEST_SUITE(MatrixMoveTest, MatrixWords);

TYPED_TEST(MatrixMoveTest, PutsEveryElementInItsPlace) {
  using W = TypeParam;
  using Span = MatrixSpan<W>;
  struct Move {
    const char* name;
    void (*apply)(Span x);
    bool swaps_sides;
    // The place in an old matrix of rows x cols that the element at (r, c) comes from.
    Shape (*source)(std::size_t r, std::size_t c, std::size_t rows, std::size_t cols);
  };
  using S = std::size_t;
  const Move moves[] = {
      {"transpose", [](Span x) { Transpose(x); }, true, [](S r, S c, S, S) { return Shape(c, r); }},
      {"transpose into another",
       [](Span x) {
         const std::vector<W> copy(x.data, x.data + x.Size());
         Transpose(MatrixSpan<const W>(copy.data(), x.rows, x.cols), Span(x.data, x.cols, x.rows));
       },
       true, [](S r, S c, S, S) { return Shape(c, r); }},
      {"one turn", [](Span x) { RotateQuarters(x, 1); }, true,
       [](S r, S c, S, S cols) { return Shape(c, cols - 1 - r); }},
      {"two turns", [](Span x) { RotateQuarters(x, 2); }, false,
       [](S r, S c, S rows, S cols) { return Shape(rows - 1 - r, cols - 1 - c); }},
      {"three turns", [](Span x) { RotateQuarters(x, 3); }, true,
       [](S r, S c, S rows, S) { return Shape(rows - 1 - c, r); }},
      {"flip horizontally", [](Span x) { FlipHorizontal(x); }, false,
       [](S r, S c, S, S cols) { return Shape(r, cols - 1 - c); }},
      {"flip vertically", [](Span x) { FlipVertical(x); }, false,
       [](S r, S c, S rows, S) { return Shape(rows - 1 - r, c); }},
  };
  for (const auto& [rows, cols] : Shapes()) {
    const TestMatrix<W> old(rows, cols);
    for (const Move& move : moves) {
      SCOPED_TRACE(move.name);
      TestMatrix<W> x = old;
      move.apply(x.Span());
      const auto [new_rows, new_cols] = move.swaps_sides ? Shape(cols, rows) : Shape(rows, cols);
      EXPECT_TRUE(Holds(MatrixSpan<const W>(x.Span().data, new_rows, new_cols),
                        [&, rows = rows, cols = cols](S r, S c) {
                          const auto [from_row, from_col] = move.source(r, c, rows, cols);
                          return old.Const()(from_row, from_col);
                        }));
    }
  }
}

// Large enough to be stored past the caches, with rows that keep to cache lines and without.
TEST(MatrixMove, MovesLargeMatrices) {
  using W = Word<8>;
  for (const std::size_t rows : {2048u, 2045u}) {
    const std::size_t cols = 2101;
    const TestMatrix<W> old(rows, cols);
    TestMatrix<W> transposed(cols, rows), block(rows + 2, cols + 2), padded(rows + 2, cols + 2);
    Transpose(old.Const(), transposed.Span());
    CopyBlock(old.Const(), 0, 0, block.Span(), 1, 1, rows, cols);
    Pad(old.Const(), 1, EdgeMode::kRepeat, padded.Span());
    EXPECT_TRUE(Holds(transposed.Const(), [&](auto r, auto c) { return old.Const()(c, r); }));
    EXPECT_TRUE(Holds(old.Const(), [&](auto r, auto c) { return block.Const()(r + 1, c + 1); }));
    EXPECT_TRUE(Holds(old.Const(), [&](auto r, auto c) { return padded.Const()(r + 1, c + 1); }));
  }
}

}  // namespace
}  // namespace vela::kernel

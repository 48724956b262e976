// Matrices to test kernels with that only move elements.
#pragma once

#include <cstddef>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

#include "kernel/matrix_span.h"
#include "kernel/word.h"

namespace vela::kernel {

using MatrixWords = ::testing::Types<Word<1>, Word<2>, Word<4>, Word<8>, Word<16>>;

/// A matrix with storage of its own, one element off any alignment.
template <class W>
class TestMatrix {
 public:
  TestMatrix(std::size_t rows, std::size_t cols) : rows_(rows), cols_(cols) {
    elements_.resize(rows * cols + 1);
    for (std::size_t i = 0; i < elements_.size(); ++i) {
      for (std::size_t k = 0; k < sizeof(W); ++k) {
        elements_[i].bytes[k] = static_cast<std::byte>((i + 1) * 2654435761u >> (8 * (k % 4)));
      }
    }
  }

  MatrixSpan<W> Span() { return {elements_.data() + 1, rows_, cols_}; }
  MatrixSpan<const W> Const() const { return {elements_.data() + 1, rows_, cols_}; }

 private:
  std::size_t rows_, cols_;
  std::vector<W> elements_;
};

/// Whether every element of x is old_at(row, col) bit for bit.
template <class W, class At>
::testing::AssertionResult Holds(MatrixSpan<const W> x, At old_at) {
  for (std::size_t r = 0; r < x.rows; ++r) {
    for (std::size_t c = 0; c < x.cols; ++c) {
      const W expected = old_at(r, c);
      if (std::memcmp(&x(r, c), &expected, sizeof(W)) != 0) {
        return ::testing::AssertionFailure() << "width " << sizeof(W) << ", element " << r << ", "
                                             << c << " of " << x.rows << " x " << x.cols;
      }
    }
  }
  return ::testing::AssertionSuccess();
}

}  // namespace vela::kernel

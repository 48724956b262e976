#pragma once

#include <algorithm>
#include <array>
#include <concepts>
#include <cstddef>
#include <span>
#include <vector>

#include "kernel/complex_parts.h"
#include "kernel/convert.h"
#include "kernel/double_blocks.h"
#include "kernel/element_types.h"
#include "kernel/matrix_span.h"
#include "kernel/missing.h"

namespace vela::kernel {

// Running sums and products: along each row, or down each column, an element of the result is that
// element of x with all before it, taken as doubles from the first on, whatever the instruction
// set. From a missing element or result on, the rest of that row or column is missing; NaN spreads
// likewise.
//
// The result has the shape of x. Elements of another type are stored by ConvertElement (a missing
// one as 0, or -0 in floats), complex ones with an imaginary part of 0: what was stored does not
// change what comes after, so that a sum that has left the range of an integer type may come back.
// The result may be x itself where the types agree, else they do not overlap. One pass; down
// columns of other types scratch of a row of doubles, which throws std::bad_alloc before anything
// is stored.

namespace detail {

enum class Running { kSum, kProduct };

/// out[i] = before[i] with x[i]; missing where one of them is. out may be either.
void Advance(Running running, const double* before, const double* x, double* out,
             std::size_t count);

/// Where rows that run side by side stand.
struct RunningRows {
  static constexpr std::size_t kRows = 8;

  explicit RunningRows(Running of) : running(of) {
    values.fill(of == Running::kSum ? -0.0 : 1.0);  // with either the first element is unchanged
  }

  Running running;
  std::array<double, kRows> values;  ///< missing, and so they stay, or the result so far
};

/// The next `count` elements of at most kRows rows; those of a row are a stride behind those of the
/// row before. out may be x.
void AdvanceRows(RunningRows& state, std::size_t rows, const double* x, std::size_t x_stride,
                 double* out, std::size_t out_stride, std::size_t count);

template <class T>
concept RunningResult = Element<T> || Complex<T>;

template <RunningResult To>
void StoreResults(std::span<const double> results, std::span<To> out) {
  if constexpr (Element<To>) {
    Convert<To, double>(results, out);
  } else {
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = To{results[i], 0.0};
  }
}

template <Element From, RunningResult To>
void RunAlongRows(Running running, MatrixSpan<const From> x, MatrixSpan<To> out) {
  for (std::size_t first = 0; first < x.rows; first += RunningRows::kRows) {
    const std::size_t rows = std::min(RunningRows::kRows, x.rows - first);
    RunningRows state(running);
    if constexpr (std::same_as<From, double> && std::same_as<To, double>) {
      AdvanceRows(state, rows, x.Row(first).data(), x.cols, out.Row(first).data(), x.cols, x.cols);
    } else {
      constexpr std::size_t kBlock = 256;
      std::array<double, RunningRows::kRows * kBlock> block;
      for (std::size_t begin = 0; begin < x.cols; begin += kBlock) {
        const std::size_t count = std::min(kBlock, x.cols - begin);
        const auto in_block = [&](std::size_t k) {
          return std::span(block).subspan(k * kBlock, count);
        };
        for (std::size_t k = 0; k < rows; ++k) {
          Convert<double, From>(x.Row(first + k).subspan(begin, count), in_block(k));
        }
        AdvanceRows(state, rows, block.data(), kBlock, block.data(), kBlock, count);
        for (std::size_t k = 0; k < rows; ++k) {
          StoreResults<To>(in_block(k), out.Row(first + k).subspan(begin, count));
        }
      }
    }
  }
}

template <Element From, RunningResult To>
void RunDownColumns(Running running, MatrixSpan<const From> x, MatrixSpan<To> out) {
  if constexpr (std::same_as<From, double> && std::same_as<To, double>) {
    Convert<double, double>(x.Row(0), out.Row(0));
    for (std::size_t row = 1; row < x.rows; ++row) {
      Advance(running, out.Row(row - 1).data(), x.Row(row).data(), out.Row(row).data(), x.cols);
    }
  } else {
    std::vector<double> results(x.cols);
    Convert<double, From>(x.Row(0), results);
    StoreResults<To>(results, out.Row(0));
    for (std::size_t row = 1; row < x.rows; ++row) {
      ForEachDoubleBlock(x.Row(row), [&](std::span<const double> block, std::size_t begin) {
        Advance(running, &results[begin], block.data(), &results[begin], block.size());
        return true;
      });
      StoreResults<To>(results, out.Row(row));
    }
  }
}

template <Element From, RunningResult To>
void Run(Running running, MatrixSpan<const From> x, bool by_rows, MatrixSpan<To> out) {
  if (x.IsEmpty()) return;
  by_rows ? RunAlongRows(running, x, out) : RunDownColumns(running, x, out);
}

template <Complex Z, class With>
void RunComplex(MatrixSpan<const Z> x, bool by_rows, MatrixSpan<Z> out, With with) {
  for (std::size_t row = 0; row < x.rows; ++row) {
    for (std::size_t col = 0; col < x.cols; ++col) {
      const Z value = x(row, col);
      if (by_rows ? col == 0 : row == 0) {
        out(row, col) = value;
        continue;
      }
      const Z before = by_rows ? out(row, col - 1) : out(row - 1, col);
      const bool missing = IsMissing(before) || IsMissing(value);
      out(row, col) = missing ? Z{kMissing, kMissing} : with(before, value);
    }
  }
}

}  // namespace detail

template <Element From, detail::RunningResult To>
void CumulativeSum(MatrixSpan<const From> x, bool by_rows, MatrixSpan<To> out) {
  detail::Run(detail::Running::kSum, x, by_rows, out);
}

template <Element From, detail::RunningResult To>
void CumulativeProduct(MatrixSpan<const From> x, bool by_rows, MatrixSpan<To> out) {
  detail::Run(detail::Running::kProduct, x, by_rows, out);
}

template <Complex Z>
void CumulativeSum(MatrixSpan<const Z> x, bool by_rows, MatrixSpan<Z> out) {
  detail::RunComplex(x, by_rows, out, [](Z before, Z value) { return before + value; });
}

template <Complex Z>
void CumulativeProduct(MatrixSpan<const Z> x, bool by_rows, MatrixSpan<Z> out) {
  detail::RunComplex(x, by_rows, out, [](Z before, Z value) { return before * value; });
}

}  // namespace vela::kernel

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kernel/edge_mode.h"
#include "kernel/element_ranks.h"
#include "kernel/matrix_span.h"

namespace vela::kernel {

/// Medians of windows that may be any number of times as large as the matrix: each element counts
/// as often as the window shows it, and zeros beyond the edges, all together, as one more element.
template <Element T>
class WeightedMedian {
 public:
  /// mode is zeros or repeat, side below 2^32, x not empty. Copies what it needs; throws
  /// std::bad_alloc.
  WeightedMedian(MatrixSpan<const T> x, std::size_t side, EdgeMode mode)
      : rows_(x.rows),
        cols_(x.cols),
        side_(side),
        before_(side / 2),
        is_repeated_(mode == EdgeMode::kRepeat),
        ranks_(x.Size() + 1),
        counts_(x.Size() + 1),
        blocks_(x.Size() / kBlock + 2),
        row_weights_(x.rows) {
    std::vector<T> elements(1);  // a zero first
    elements.insert(elements.end(), x.data, x.data + x.Size());
    ranks_.Assign(elements);
  }

  /// out(r, c) becomes the median of the window of the element there.
  void Filter(MatrixSpan<T> out) {
    for (std::size_t r = 0; r < rows_; ++r) {
      WeighRows(r);
      std::fill(counts_.begin(), counts_.end(), 0);
      std::fill(blocks_.begin(), blocks_.end(), 0);
      block_ = below_ = 0;
      // Columns of the extended matrix, counted from its first.
      AddBefore(before_);
      const std::size_t inside = std::min(cols_, side_ - before_);
      for (std::size_t c = 0; c < inside; ++c) AddColumn(c, 1);
      AddBehind(side_ - before_ - inside);
      for (std::size_t c = 0;; ++c) {
        out(r, c) = Median();
        if (c + 1 == cols_) break;
        if (c < before_) {
          AddBefore(std::uint64_t(-1));
        } else {
          AddColumn(c - before_, std::uint64_t(-1));
        }
        const std::size_t entering = c + side_ - before_;
        if (entering < cols_) {
          AddColumn(entering, 1);
        } else {
          AddBehind(1);
        }
      }
    }
  }

 private:
  static constexpr std::size_t kBlock = 64;

  void WeighRows(std::size_t r) {
    first_row_ = r - std::min(r, before_);
    const std::size_t reach = side_ - 1 - before_;
    last_row_ = std::min(r + reach, rows_ - 1);
    std::fill_n(row_weights_.begin() + static_cast<std::ptrdiff_t>(first_row_),
                last_row_ - first_row_ + 1, 1);
    zeros_per_column_ = 0;
    if (is_repeated_) {
      row_weights_[first_row_] += before_ - std::min(r, before_);
      row_weights_[last_row_] += r + reach - last_row_;
    } else {
      zeros_per_column_ = side_ - (last_row_ - first_row_ + 1);
    }
  }

  // Weights are numbers modulo 2^64, so that -1 takes one away.
  void AddBefore(std::uint64_t weight) { AddBeyond(0, weight); }
  void AddBehind(std::uint64_t weight) { AddBeyond(cols_ - 1, weight); }
  void AddBeyond(std::size_t edge, std::uint64_t weight) {
    if (is_repeated_) {
      AddColumn(edge, weight);
    } else {
      Add(0, weight * side_);
    }
  }
  void AddColumn(std::size_t c, std::uint64_t weight) {
    for (std::size_t r = first_row_; r <= last_row_; ++r) {
      Add(1 + r * cols_ + c, weight * row_weights_[r]);
    }
    if (zeros_per_column_ > 0) Add(0, weight * zeros_per_column_);
  }
  void Add(std::size_t element, std::uint64_t weight) {
    const std::size_t rank = ranks_.Ranks()[element], block = rank / kBlock;
    counts_[rank] += weight;
    blocks_[block] += weight;
    if (block < block_) below_ += weight;
  }

  T Median() {
    const MedianPlace place(std::uint64_t{side_} * side_);
    const T low = Select(place.low);
    return place.is_mean ? place.Mean(low, Select(place.low + 1)) : low;
  }
  T Select(std::uint64_t n) {
    while (below_ > n) below_ -= blocks_[--block_];
    while (below_ + blocks_[block_] <= n) below_ += blocks_[block_++];
    std::size_t rank = block_ * kBlock;
    for (std::uint64_t left = n - below_; left >= counts_[rank]; ++rank) left -= counts_[rank];
    return ranks_.Sorted()[rank];
  }

  std::size_t rows_, cols_, side_, before_;
  bool is_repeated_;
  ElementRanks<T> ranks_;
  std::vector<std::uint64_t> counts_, blocks_, row_weights_;
  std::size_t first_row_ = 0, last_row_ = 0, zeros_per_column_ = 0;
  // Elements in the blocks before block_.
  std::size_t block_ = 0;
  std::uint64_t below_ = 0;
};

}  // namespace vela::kernel

#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "kernel/element_ranks.h"

namespace vela::kernel {

namespace detail {
/// A row of windows over columns of ranks: each of `side` ranks, the next one `stride` behind.
struct RankRow {
  const std::uint32_t* ranks;
  std::size_t stride, side, count;
  std::uint64_t* bits;  ///< one for each rank, all 0
  std::size_t words;    ///< of bits
  MedianPlace place;
  std::uint32_t* low;  ///< results: the ranks of the elements that make the medians
  std::uint32_t* high;
};
void SlideOverRanks(const RankRow& row);
}  // namespace detail

/// Medians of windows by the ranks of their elements, tile by tile. A window is a set of bits, one
/// for each rank in the tile, and its median is never far from its neighbour's: a step to the next
/// window costs as many bits as enter and leave.
template <Element T>
class RankMedian {
 public:
  /// For matrices of up to rows by cols. Throws std::bad_alloc.
  RankMedian(std::size_t side, std::size_t rows, std::size_t cols)
      : side_(side),
        tile_rows_(std::min(rows, TileSide(side))),
        tile_cols_(std::min(cols, TileSide(side))),
        capacity_(
            CheckedProduct(CheckedSum(tile_rows_, side - 1), CheckedSum(tile_cols_, side - 1))),
        tile_(capacity_),
        ranks_(capacity_),
        bits_(capacity_ / 64 + 2),
        low_(tile_cols_),
        high_(tile_cols_) {}

  /// out becomes the medians of the windows with their corners in `count` rows and the first `cols`
  /// columns of the extended rows; as many as said above at most.
  void Filter(const T* const* rows, std::size_t count, std::size_t cols, T* out) {
    for (std::size_t r = 0; r < count; r += tile_rows_) {
      for (std::size_t c = 0; c < cols; c += tile_cols_) {
        FilterTile(rows + r, c, std::min(tile_rows_, count - r), std::min(tile_cols_, cols - c),
                   out + r * cols + c, cols);
      }
    }
  }

 private:
  // In a larger tile, the elements of a window are further apart in the set; what tiles share is
  // ranked twice.
  static constexpr std::size_t TileSide(std::size_t side) {
    return std::max(side, std::min<std::size_t>(5 * side, 128));
  }

  void FilterTile(const T* const* rows, std::size_t column, std::size_t count, std::size_t cols,
                  T* out, std::size_t out_stride) {
    const std::size_t height = count + side_ - 1, width = cols + side_ - 1;
    // Column by column, as windows take them in.
    for (std::size_t r = 0; r < height; ++r) {
      const T* const row = rows[r] + column;
      for (std::size_t c = 0; c < width; ++c) tile_[c * height + r] = row[c];
    }
    ranks_.Assign(std::span(tile_).first(height * width));
    const MedianPlace place(side_ * side_);
    const T* const sorted = ranks_.Sorted();
    for (std::size_t i = 0; i < count; ++i, out += out_stride) {
      const std::size_t words = height * width / 64 + 1;
      std::fill_n(bits_.data(), words, 0);
      detail::SlideOverRanks({ranks_.Ranks() + i, height, side_, cols, bits_.data(), words, place,
                              low_.data(), high_.data()});
      for (std::size_t k = 0; k < cols; ++k) {
        out[k] = place.is_mean ? place.Mean(sorted[low_[k]], sorted[high_[k]]) : sorted[low_[k]];
      }
    }
  }

  std::size_t side_, tile_rows_, tile_cols_, capacity_;
  std::vector<T> tile_;
  ElementRanks<T> ranks_;
  std::vector<std::uint64_t> bits_;
  std::vector<std::uint32_t> low_, high_;
};

}  // namespace vela::kernel

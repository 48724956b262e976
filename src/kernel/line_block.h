#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>

#include "kernel/line_start.h"

namespace vela::kernel {

/// Elements that fill a cache line: the side of the square blocks that matrices are moved in.
template <class W>
inline constexpr std::size_t kLineElements = 64 / sizeof(W);

/// Rows that begin `stride` elements apart; a negative stride numbers them from the last one up.
template <class T>
struct StridedRows {
  T* data;
  std::ptrdiff_t stride;

  T* Row(std::size_t row) const {
    return data + static_cast<std::ptrdiff_t>(row * static_cast<std::size_t>(stride));
  }
  StridedRows At(std::size_t row, std::size_t col) const { return {Row(row) + col, stride}; }
  /// The first `count` rows, numbered from the last one up.
  StridedRows Reversed(std::size_t count) const { return {Row(count - 1), -stride}; }
  operator StridedRows<const T>() const requires(!std::is_const_v<T>) { return {data, stride}; }
};
template <class W>
using Block = StridedRows<W>;
template <class W>
using ConstBlock = StridedRows<const W>;

/// Where pieces of `side` elements begin and end when `count` elements are cut so that the first
/// piece has `lead` elements (0: none such) and all others but the last are whole.
class Pieces {
 public:
  Pieces(std::size_t count, std::size_t lead, std::size_t side)
      : count_(count), lead_(lead % side), side_(side) {}

  std::size_t Size() const {
    return (count_ - std::min(count_, lead_) + side_ - 1) / side_ + (lead_ > 0);
  }
  std::size_t Begin(std::size_t piece) const {
    if (lead_ == 0) return piece * side_;
    return piece == 0 ? 0 : lead_ + (piece - 1) * side_;
  }
  std::size_t Count(std::size_t piece) const {
    return std::min(count_ - Begin(piece), piece == 0 && lead_ > 0 ? lead_ : side_);
  }

 private:
  std::size_t count_, lead_, side_;
};

}  // namespace vela::kernel

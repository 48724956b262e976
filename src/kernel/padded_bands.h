#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include "kernel/convert.h"
#include "kernel/edge_mode.h"
#include "kernel/matrix_span.h"

namespace vela::kernel {

/// a * b and a + b for sizes; a result that no memory could hold throws std::bad_alloc.
inline std::size_t CheckedProduct(std::size_t a, std::size_t b) {
  if (b != 0 && a > std::numeric_limits<std::ptrdiff_t>::max() / b) throw std::bad_alloc();
  return a * b;
}
inline std::size_t CheckedSum(std::size_t a, std::size_t b) {
  if (a > std::numeric_limits<std::ptrdiff_t>::max() - b) throw std::bad_alloc();
  return a + b;
}

/// Rows of scratch that pass by: those at the end become those at the front. The elements start as
/// zeros, and kSlackBytes behind each row may be read (and, in the ring, written) too.
template <class T>
class RowRing {
 public:
  static constexpr std::size_t kSlackBytes = 512;

  /// Throws std::bad_alloc.
  RowRing(std::size_t rows, std::size_t width)
      : stride_(CheckedSum(width, kSlackBytes / sizeof(T))),
        storage_(static_cast<T*>(
            std::calloc(CheckedProduct(CheckedProduct(rows, stride_), sizeof(T)) + 1, 1))),
        rows_(rows) {
    if (storage_ == nullptr) throw std::bad_alloc();
    for (std::size_t i = 0; i < rows; ++i) rows_[i] = storage_.get() + i * stride_;
  }

  T* const* Rows() const { return rows_.data(); }
  std::size_t Count() const { return rows_.size(); }
  /// Row `by` becomes row 0; those before it come behind the last.
  void Advance(std::size_t by) {
    std::rotate(rows_.begin(), rows_.begin() + static_cast<std::ptrdiff_t>(by), rows_.end());
  }

 private:
  static_assert(std::is_trivially_copyable_v<T>);
  struct Free {
    void operator()(T* elements) const { std::free(elements); }
  };

  std::size_t stride_;
  std::unique_ptr<T[], Free> storage_;  // zeros that cost nothing until they are used
  std::vector<T*> rows_;
};

/// The windows of a filter: how far they reach, and what is found beyond the edges.
struct WindowReach {
  std::size_t above, below, left, right;
  EdgeMode mode;

  /// Windows of side by side elements, an even one reaching one further up and left.
  static WindowReach Square(std::size_t side, EdgeMode mode) {
    const std::size_t before = side / 2, after = side - 1 - before;
    return {before, after, before, after, mode};
  }
  /// Whether such windows can be had: a mirror shows no more than there is.
  bool Fits(std::size_t rows, std::size_t cols) const {
    if (mode == EdgeMode::kMirror) {
      return std::max(above, below) < rows && std::max(left, right) < cols;
    }
    return mode == EdgeMode::kZeros || mode == EdgeMode::kRepeat;
  }
};

/// Copies a matrix, extended beyond its edges, band after band of rows, so that the rows of a band
/// can be replaced in the matrix once the band is loaded. Elements are kept as S.
template <class T, class S = T>
class PaddedBands {
 public:
  /// reach.Fits(rows, cols), and a matrix that is not empty. What lies beyond the edges is `zero`
  /// where the mode says zeros. All memory is allocated here; throws std::bad_alloc.
  PaddedBands(MatrixSpan<const T> x, const WindowReach& reach, S zero = S())
      : PaddedBands(x, reach, zero, BandRows(x, reach)) {}
  PaddedBands(MatrixSpan<const T> x, const WindowReach& reach, S zero, std::size_t band_rows)
      : x_(x),
        reach_(reach),
        zero_(zero),
        band_rows_(std::min(band_rows, x.rows)),
        halo_(reach.above + reach.below),
        width_(CheckedSum(x.cols, CheckedSum(reach.left, reach.right))),
        ring_(CheckedSum(band_rows_, halo_), width_) {}

  /// The most rows of a band.
  std::size_t MaxCount() const { return band_rows_; }
  /// Columns of an extended row.
  std::size_t Width() const { return width_; }
  /// Rows that the windows of a band need besides its own.
  std::size_t Halo() const { return halo_; }

  /// Goes to the next band; false after the last. copy(from, n, to) copies elements of a row.
  bool Next() {
    return Next([](const T* from, std::size_t n, S* to) {
      if constexpr (std::is_same_v<S, T>) {
        std::memcpy(static_cast<void*>(to), from, n * sizeof(T));
      } else {
        Convert(std::span<const T>(from, n), std::span<S>(to, n));
      }
    });
  }
  template <class Copy>
  bool Next(Copy copy) {
    first_ += count_;
    if (first_ == x_.rows) return false;
    ring_.Advance(count_);
    const std::size_t kept = count_ == 0 ? 0 : halo_;
    count_ = std::min(band_rows_, x_.rows - first_);
    // From the matrix first: a mirrored row above it is a copy of one below.
    for (std::size_t i = kept; i < count_ + halo_; ++i) {
      if (IsInside(first_ + i)) LoadRow(first_ + i - reach_.above, ring_.Rows()[i], copy);
    }
    for (std::size_t i = kept; i < count_ + halo_; ++i) {
      if (!IsInside(first_ + i)) ExtendTo(i);
    }
    fresh_ = kept;
    return true;
  }
  /// The band's first row in the matrix, and how many it has.
  std::size_t First() const { return first_; }
  std::size_t Count() const { return count_; }
  /// The extended rows of the band's windows, Count() + Halo() of them: the window of the element
  /// in row r of the band and column c has its corner in Rows()[r][c]. Those before Fresh() were in
  /// the last band's too.
  S* const* Rows() const { return ring_.Rows(); }
  std::size_t Fresh() const { return fresh_; }

 private:
  // Bands that stay in the processor's cache, yet are not much shorter than what they share.
  static std::size_t BandRows(MatrixSpan<const T> x, const WindowReach& reach) {
    constexpr std::size_t kCacheBytes = std::size_t{1} << 18;
    const std::size_t halo = reach.above + reach.below;
    const std::size_t fit = kCacheBytes / sizeof(S) / (x.cols + 1);
    return std::max({std::size_t{8}, halo / 4, fit - std::min(fit, halo)});
  }

  // Of a row counted from the first extended one.
  bool IsInside(std::size_t row) const {
    return row >= reach_.above && row - reach_.above < x_.rows;
  }

  template <class Copy>
  void LoadRow(std::size_t row, S* to, Copy copy) const {
    S* const middle = to + reach_.left;
    const std::size_t cols = x_.cols;
    copy(x_.data + row * cols, cols, middle);
    if (reach_.mode == EdgeMode::kMirror) {
      std::reverse_copy(middle + 1, middle + 1 + reach_.left, to);
      std::reverse_copy(middle + cols - 1 - reach_.right, middle + cols - 1, middle + cols);
    } else {
      const bool repeat = reach_.mode == EdgeMode::kRepeat;
      std::fill_n(to, reach_.left, repeat ? middle[0] : zero_);
      std::fill_n(middle + cols, reach_.right, repeat ? middle[cols - 1] : zero_);
    }
  }

  // Fills row i of the ring, which lies beyond the matrix, from others of the ring.
  void ExtendTo(std::size_t i) {
    S* const* const rows = ring_.Rows();
    if (reach_.mode == EdgeMode::kZeros) {
      std::fill_n(rows[i], width_, zero_);
      return;
    }
    const std::size_t row = first_ + i;  // extended
    const bool is_above = row < reach_.above;
    const std::size_t edge = is_above ? reach_.above : reach_.above + x_.rows - 1;
    const std::size_t from = reach_.mode == EdgeMode::kRepeat ? edge : 2 * edge - row;
    std::copy_n(rows[from - first_], width_, rows[i]);
  }

  MatrixSpan<const T> x_;
  WindowReach reach_;
  S zero_;
  std::size_t band_rows_, halo_, width_;
  RowRing<S> ring_;
  std::size_t first_ = 0, count_ = 0, fresh_ = 0;
};

}  // namespace vela::kernel

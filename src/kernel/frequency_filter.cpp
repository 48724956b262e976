#include "kernel/frequency_filter.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <span>
#include <tuple>
#include <vector>

#include "kernel/dispatch.h"
#include "kernel/frequency_mask.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/frequency_filter.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/fft-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

constexpr Direction kForward = Direction::kForward, kInverse = Direction::kInverse;

template <class D>
inline constexpr std::size_t kLanes = hn::MaxLanes(D());

// v[row] lane col becomes v[col] lane row.
template <class D>
HWY_INLINE void Transpose(D d, hn::Vec<D> (&v)[kLanes<D>]) {
  constexpr std::size_t kCount = kLanes<D>;
  if constexpr (kCount > 1) {
    for (std::size_t i = 0; i < kCount; i += 2) {
      const auto upper = hn::InterleaveUpper(d, v[i], v[i + 1]);
      v[i] = hn::InterleaveLower(d, v[i], v[i + 1]);
      v[i + 1] = upper;
    }
  }
  if constexpr (kCount == 4) {
    for (const std::size_t i : {0, 1}) {
      const auto upper = hn::ConcatUpperUpper(d, v[i + 2], v[i]);
      v[i] = hn::ConcatLowerLower(d, v[i + 2], v[i]);
      v[i + 2] = upper;
    }
  }
  if constexpr (kCount == 8) {
    for (const std::size_t i : {0, 1}) {
      const auto a = hn::ConcatLowerLower(d, v[i + 4], v[i]);
      const auto b = hn::ConcatLowerLower(d, v[i + 6], v[i + 2]);
      const auto e = hn::ConcatUpperUpper(d, v[i + 4], v[i]);
      const auto f = hn::ConcatUpperUpper(d, v[i + 6], v[i + 2]);
      v[i] = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(b), a);
      v[i + 2] = hn::OddEvenBlocks(b, hn::SwapAdjacentBlocks(a));
      v[i + 4] = hn::OddEvenBlocks(hn::SwapAdjacentBlocks(f), e);
      v[i + 6] = hn::OddEvenBlocks(f, hn::SwapAdjacentBlocks(e));
    }
  }
}

// Between the passes a row holds the lower half of its spectrum X: the real parts of X[0] ..
// X[cols / 2], then the imaginary parts of X[1] .. X[(cols - 1) / 2]. Those of X[0] and, for even
// cols, of X[cols / 2] are zero.
struct HalfSpectrum {
  explicit HalfSpectrum(std::size_t cols) : half(cols / 2), imaginary_end((cols + 1) / 2) {}
  std::size_t half;           // also what the column of an imaginary part is further right by
  std::size_t imaginary_end;  // one past the last frequency with an imaginary part
};

// Twice as many rows as there are lanes, two to a lane as the real and the imaginary part of a
// complex line. The spare row stands for those that there are not.
template <class D>
class RowGroup {
 public:
  static constexpr std::size_t kRows = 2 * kLanes<D>;

  RowGroup(MatrixSpan<double> x, std::size_t first, std::span<double> spare)
      : cols_(x.cols), spectrum_(x.cols) {
    std::ranges::fill(spare, 0.0);
    for (std::size_t i = 0; i < kRows; ++i) {
      rows_[i] = first + i < x.rows ? x.Row(first + i).data() : spare.data();
    }
  }

  void LoadValues(D d, double* lines) const {
    for (std::size_t col = 0; col < cols_; col += kLanes<D>) {
      for (const std::size_t part : {0, 1}) {
        hn::Vec<D> v[kLanes<D>];
        LoadBlock(d, part, col, cols_, v);
        double* const to = lines + 2 * kLanes<D> * col + kLanes<D> * part;
        const std::size_t count = std::min(kLanes<D>, cols_ - col);
        for (std::size_t i = 0; i < count; ++i) hn::Store(v[i], d, to + 2 * kLanes<D> * i);
      }
    }
  }

  void StoreValues(D d, const double* lines) const {
    for (std::size_t col = 0; col < cols_; col += kLanes<D>) {
      const std::size_t count = std::min(kLanes<D>, cols_ - col);
      for (const std::size_t part : {0, 1}) {
        const double* const from = lines + 2 * kLanes<D> * col + kLanes<D> * part;
        hn::Vec<D> v[kLanes<D>];
        for (std::size_t i = 0; i < kLanes<D>; ++i) {
          v[i] = i < count ? hn::Load(d, from + 2 * kLanes<D> * i) : hn::Zero(d);
        }
        StoreBlock(d, part, col, 0, count, v);
      }
    }
  }

  // Twice the spectra of the rows a and b, from that of a + i b: Z[f] + conj Z[-f] and
  // (Z[f] - conj Z[-f]) / i.
  void StoreSpectra(D d, const FftPlan& plan, const double* lines) const {
    const auto line = [&](std::size_t frequency) HWY_ATTR {
      return LoadParts<kForward>(d, lines + 2 * kLanes<D> * plan.places[frequency]);
    };
    for (std::size_t first = 0; first <= spectrum_.half; first += kLanes<D>) {
      hn::Vec<D> a_re[kLanes<D>], a_im[kLanes<D>], b_re[kLanes<D>], b_im[kLanes<D>];
      for (std::size_t i = 0; i < kLanes<D>; ++i) {
        const std::size_t frequency = std::min(first + i, spectrum_.half);
        const Parts<D> z = line(frequency);
        const Parts<D> mirrored = line(frequency == 0 ? 0 : cols_ - frequency);
        a_re[i] = hn::Add(z.re, mirrored.re);
        a_im[i] = hn::Sub(z.im, mirrored.im);
        b_re[i] = hn::Add(z.im, mirrored.im);
        b_im[i] = hn::Sub(mirrored.re, z.re);
      }
      const std::size_t re_end = std::min(kLanes<D>, spectrum_.half + 1 - first);
      StoreBlock(d, 0, first, 0, re_end, a_re);
      StoreBlock(d, 1, first, 0, re_end, b_re);
      if (first >= spectrum_.imaginary_end) continue;
      const std::size_t im_end = std::min(kLanes<D>, spectrum_.imaginary_end - first);
      StoreBlock(d, 0, spectrum_.half + first, first == 0, im_end, a_im);
      StoreBlock(d, 1, spectrum_.half + first, first == 0, im_end, b_im);
    }
  }

  // The spectrum of a + i b from those of the rows a and b.
  void LoadSpectra(D d, const FftPlan& plan, double* lines) const {
    const auto line = [&](std::size_t frequency)
                          HWY_ATTR { return lines + 2 * kLanes<D> * plan.places[frequency]; };
    for (std::size_t first = 0; first <= spectrum_.half; first += kLanes<D>) {
      hn::Vec<D> a_re[kLanes<D>], a_im[kLanes<D>], b_re[kLanes<D>], b_im[kLanes<D>];
      LoadBlock(d, 0, first, cols_, a_re);
      LoadBlock(d, 1, first, cols_, b_re);
      LoadBlock(d, 0, spectrum_.half + first, cols_, a_im);
      LoadBlock(d, 1, spectrum_.half + first, cols_, b_im);
      const std::size_t count = std::min(kLanes<D>, spectrum_.half + 1 - first);
      for (std::size_t i = 0; i < count; ++i) {
        const std::size_t frequency = first + i;
        if (frequency == 0 || frequency >= spectrum_.imaginary_end) {
          StoreParts<kForward, D>(d, {a_re[i], b_re[i]}, line(frequency));
          continue;
        }
        StoreParts<kForward, D>(d, {hn::Sub(a_re[i], b_im[i]), hn::Add(a_im[i], b_re[i])},
                                line(frequency));
        StoreParts<kForward, D>(d, {hn::Add(a_re[i], b_im[i]), hn::Sub(b_re[i], a_im[i])},
                                line(cols_ - frequency));
      }
    }
  }

 private:
  // v[i] becomes column col + i of the rows of a part, for those columns that are before end.
  void LoadBlock(D d, std::size_t part, std::size_t col, std::size_t end,
                 hn::Vec<D> (&v)[kLanes<D>]) const {
    double* const* const rows = rows_ + kLanes<D> * part;
    if (col + kLanes<D> <= end) {
      for (std::size_t i = 0; i < kLanes<D>; ++i) v[i] = hn::LoadU(d, rows[i] + col);
    } else {
      const std::size_t count = col < end ? end - col : 0;
      for (std::size_t i = 0; i < kLanes<D>; ++i) {
        HWY_ALIGN double values[kLanes<D>] = {};
        std::copy_n(rows[i] + (count == 0 ? 0 : col), count, values);
        v[i] = hn::Load(d, values);
      }
    }
    Transpose(d, v);
  }

  // Column col + i of the rows of a part becomes v[i], for i from begin to end.
  void StoreBlock(D d, std::size_t part, std::size_t col, std::size_t begin, std::size_t end,
                  hn::Vec<D> (&v)[kLanes<D>]) const {
    Transpose(d, v);
    double* const* const rows = rows_ + kLanes<D> * part;
    for (std::size_t i = 0; i < kLanes<D>; ++i) {
      if (begin == 0 && end == kLanes<D>) {
        hn::StoreU(v[i], d, rows[i] + col);
        continue;
      }
      HWY_ALIGN double values[kLanes<D>];
      hn::Store(v[i], d, values);
      std::copy(values + begin, values + end, rows[i] + col + begin);
    }
  }

  std::size_t cols_;
  HalfSpectrum spectrum_;
  double* rows_[kRows];
};

template <Direction kDirection, class D>
void TransformRows(D d, const FftPlan& plan, MatrixSpan<double> x, double* lines,
                   std::span<double> spare) {
  for (std::size_t row = 0; row < x.rows; row += RowGroup<D>::kRows) {
    const RowGroup<D> group(x, row, spare);
    if constexpr (kDirection == kForward) {
      group.LoadValues(d, lines);
      Transform<kForward>(d, plan, lines);
      group.StoreSpectra(d, plan, lines);
    } else {
      group.LoadSpectra(d, plan, lines);
      Transform<kInverse>(d, plan, lines);
      group.StoreValues(d, lines);
    }
  }
}

// L of Response at one cut-off, for the frequencies of a column of lanes.
template <class D>
class LowPass {
 public:
  LowPass(D d, const FrequencyMask& mask, const FrequencyMask::Edge& edge,
          const double* col_squares, const double* col_factors)
      : d_(d),
        mask_(mask),
        edge_(edge),
        squares_(hn::LoadU(d, col_squares)),
        factors_(hn::LoadU(d, col_factors)) {}

  HWY_INLINE hn::Vec<D> operator()(std::size_t place) const {
    const auto one = hn::Set(d_, 1.0);
    if (mask_.kind == FrequencyMask::Kind::kGaussian) {
      return hn::Mul(factors_, hn::Set(d_, edge_.row_factors[place]));
    }
    const auto square = hn::Add(squares_, hn::Set(d_, mask_.row_squares[place]));
    if (mask_.kind == FrequencyMask::Kind::kIdeal) {
      return hn::IfThenElseZero(hn::Le(square, hn::Set(d_, edge_.limit)), one);
    }
    auto base = hn::Mul(square, hn::Set(d_, edge_.scale)), power = one;
    for (unsigned rest = mask_.order; rest != 0; rest >>= 1) {
      if (rest & 1) power = hn::Mul(power, base);
      base = hn::Mul(base, base);
    }
    return hn::Div(one, hn::Add(one, power));
  }

 private:
  D d_;
  const FrequencyMask& mask_;
  const FrequencyMask::Edge& edge_;
  hn::Vec<D> squares_, factors_;
};

// Multiplies the columns of lanes, from col on, by the mask.
template <class D>
void ApplyMask(D d, const FrequencyMask& mask, std::size_t col, double* lines) {
  const LowPass<D> below(d, mask, mask.upper, &mask.col_squares[col], &mask.upper.col_factors[col]);
  const LowPass<D> removed(d, mask, mask.lower, &mask.col_squares[col],
                           &mask.lower.col_factors[col]);
  const auto one = hn::Set(d, 1.0), scale = hn::Set(d, mask.scale);
  for (std::size_t place = 0; place < mask.row_squares.size(); ++place) {
    auto response = mask.has_upper ? below(place) : one;
    if (mask.has_lower) response = hn::Mul(response, hn::Sub(one, removed(place)));
    if (mask.is_stop) response = hn::Sub(one, response);
    response = hn::Mul(response, scale);
    double* const at = lines + 2 * kLanes<D> * place;
    const Parts<D> z = LoadParts<kForward>(d, at);
    StoreParts<kForward, D>(d, {hn::Mul(z.re, response), hn::Mul(z.im, response)}, at);
  }
}

// Several vectors of columns side by side, so that more of a cache line and of a page is used while
// it is near: their lines are one set after the other.
template <class D>
class ColumnStrip {
 public:
  ColumnStrip(MatrixSpan<double> x, std::size_t first, std::size_t vectors, std::size_t stride)
      : x_(x), spectrum_(x.cols), first_(first), vectors_(vectors), stride_(stride) {}

  template <class Visit>
  void ForEachVector(Visit visit) const {
    for (std::size_t i = 0; i < vectors_; ++i) visit(first_ + kLanes<D> * i, i * stride_);
  }

  void Load(D d, double* lines) const {
    for (std::size_t row = 0; row < x_.rows; ++row) {
      const double* const from = x_.Row(row).data();
      ForEachVector([&](std::size_t col, std::size_t offset) HWY_ATTR {
        double* const to = lines + offset + 2 * kLanes<D> * row;
        if (IsWhole(col)) {
          hn::Store(hn::LoadU(d, from + col), d, to);
          hn::Store(hn::LoadU(d, from + spectrum_.half + col), d, to + kLanes<D>);
          return;
        }
        for (std::size_t i = 0; i < kLanes<D>; ++i) {
          to[i] = col + i <= spectrum_.half ? from[col + i] : 0;
          to[kLanes<D> + i] = HasImaginary(col + i) ? from[spectrum_.half + col + i] : 0;
        }
      });
    }
  }

  void Store(D d, const double* lines) const {
    for (std::size_t row = 0; row < x_.rows; ++row) {
      double* const to = x_.Row(row).data();
      ForEachVector([&](std::size_t col, std::size_t offset) HWY_ATTR {
        const double* const from = lines + offset + 2 * kLanes<D> * row;
        if (IsWhole(col)) {
          hn::StoreU(hn::Load(d, from), d, to + col);
          hn::StoreU(hn::Load(d, from + kLanes<D>), d, to + spectrum_.half + col);
          return;
        }
        for (std::size_t i = 0; i < kLanes<D>; ++i) {
          if (col + i <= spectrum_.half) to[col + i] = from[i];
          if (HasImaginary(col + i)) to[spectrum_.half + col + i] = from[kLanes<D> + i];
        }
      });
    }
  }

 private:
  bool HasImaginary(std::size_t col) const { return col > 0 && col < spectrum_.imaginary_end; }
  bool IsWhole(std::size_t col) const {
    return HasImaginary(col) && HasImaginary(col + kLanes<D> - 1);
  }

  MatrixSpan<double> x_;
  HalfSpectrum spectrum_;
  std::size_t first_, vectors_, stride_;
};

// How many vectors of columns of so many rows are transformed side by side.
template <class D>
std::size_t StripVectors(std::size_t rows) {
  constexpr std::size_t kScratch = 1024 * 1024, kMostColumns = 32;
  const std::size_t columns = kScratch / (2 * sizeof(double) * rows);
  return std::clamp<std::size_t>(columns, kLanes<D>, kMostColumns) / kLanes<D>;
}

template <class D>
void FilterColumns(D d, const FftPlan& plan, const FrequencyMask& mask, MatrixSpan<double> x,
                   double* lines) {
  const std::size_t stride = 2 * kLanes<D> * plan.WorkSize(), end = x.cols / 2 + 1;
  const std::size_t most = StripVectors<D>(x.rows);
  for (std::size_t col = 0; col < end; col += most * kLanes<D>) {
    const std::size_t vectors = std::min(most, (end - col + kLanes<D> - 1) / kLanes<D>);
    const ColumnStrip<D> strip(x, col, vectors, stride);
    strip.Load(d, lines);
    strip.ForEachVector([&](std::size_t first, std::size_t offset) HWY_ATTR {
      Transform<kForward>(d, plan, lines + offset);
      ApplyMask(d, mask, first, lines + offset);
      Transform<kInverse>(d, plan, lines + offset);
    });
    strip.Store(d, lines);
  }
}

// Vectors of lines need scratch for as many lines. Calls work with the widest vectors, or with
// single lanes where the scratch would be out of proportion to the matrix.
template <class Work>
HWY_INLINE void WithLanes(std::size_t lines, std::size_t line_size, std::size_t matrix_size,
                          Work work) {
  constexpr std::size_t kModest = std::size_t{1} << 20;
  const hn::ScalableTag<double> d;
  if (lines > 1 && line_size <= std::max(kModest, matrix_size / 2) / (2 * hn::Lanes(d))) {
    work(d);
  } else {
    work(hn::CappedTag<double, 1>());
  }
}

struct AlignedDoubles {
  explicit AlignedDoubles(std::size_t size)
      : data(static_cast<double*>(::operator new(size * sizeof(double), kAlignment))) {}
  AlignedDoubles(const AlignedDoubles&) = delete;
  ~AlignedDoubles() { ::operator delete(data, kAlignment); }
  static constexpr std::align_val_t kAlignment{64};
  double* data;
};

void FilterReal(MatrixSpan<double> x, const FrequencyFilter& filter) {
  const FftPlan row_plan = CompletePlan(x.cols), col_plan = CompletePlan(x.rows);
  const FrequencyMask mask(filter, col_plan.frequencies, x.cols);
  const std::size_t row_lines = (x.rows + 1) / 2, col_lines = x.cols / 2 + 1;
  std::size_t scratch = 0;
  WithLanes(row_lines, row_plan.WorkSize(), x.Size(), [&](auto d) {
    scratch = std::max(scratch, 2 * kLanes<decltype(d)> * row_plan.WorkSize());
  });
  WithLanes(col_lines, col_plan.WorkSize(), x.Size(), [&](auto d) {
    const std::size_t lines = kLanes<decltype(d)> * StripVectors<decltype(d)>(x.rows);
    scratch = std::max(scratch, 2 * lines * col_plan.WorkSize());
  });
  const AlignedDoubles lines(scratch);
  std::vector<double> spare(x.cols);

  WithLanes(row_lines, row_plan.WorkSize(), x.Size(),
            [&](auto d) { TransformRows<kForward>(d, row_plan, x, lines.data, spare); });
  WithLanes(col_lines, col_plan.WorkSize(), x.Size(),
            [&](auto d) { FilterColumns(d, col_plan, mask, x, lines.data); });
  WithLanes(row_lines, row_plan.WorkSize(), x.Size(),
            [&](auto d) { TransformRows<kInverse>(d, row_plan, x, lines.data, spare); });
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

void FilterFrequencies(MatrixSpan<double> x, const FrequencyFilter& filter) {
  if (!x.IsEmpty()) VELA_KERNEL_DISPATCH(FilterReal)(x, filter);
}

// The response is real, so that the parts do not mix.
void FilterFrequencies(MatrixSpan<std::complex<double>> x, const FrequencyFilter& filter) {
  std::vector<double> parts[2];
  for (const std::size_t part : {0, 1}) {
    parts[part].resize(x.Size());
    for (std::size_t i = 0; i < x.Size(); ++i) {
      parts[part][i] = part == 0 ? x.data[i].real() : x.data[i].imag();
    }
    FilterFrequencies(MatrixSpan<double>(parts[part], x.rows, x.cols), filter);
  }
  for (std::size_t i = 0; i < x.Size(); ++i) x.data[i] = {parts[0][i], parts[1][i]};
}

}  // namespace vela::kernel
#endif

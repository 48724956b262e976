#include "kernel/shrink.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "kernel/dispatch.h"
#include "kernel/double_blocks.h"

#ifndef VELA_KERNEL_SHRINK_TYPES
#define VELA_KERNEL_SHRINK_TYPES
namespace vela::kernel {

// What a row adds to the totals of its columns.
enum class ColumnStep { kAdd, kAddCompensated, kLow, kHigh };

// The order in which pairs of numbers are put right to sort them all, whatever they are: merging by
// odd and even positions (Batcher).
struct SortingNetwork {
  static constexpr std::size_t kMost = 64;  // numbers

  struct Pair {
    std::uint8_t low, high;
  };
  std::array<Pair, 543> pairs;
  std::size_t size = 0;

  explicit SortingNetwork(std::size_t count);
};

// The median of so many values, of which the numbers come first, value(k) being number k in
// ascending order, and the others are NaN.
template <class Value>
double MedianOfSorted(Value value, std::size_t numbers, std::size_t count) {
  const std::size_t upper = count / 2;
  if (count == 0) return kMissing;
  if (upper >= numbers) return std::numeric_limits<double>::quiet_NaN();
  const double high = value(upper);
  if (count % 2 != 0) return high;
  const double low = value(upper - 1);
  const double middle = (low + high) / 2;
  return std::isfinite(middle) ? middle : low / 2 + high / 2;
}

}  // namespace vela::kernel
#endif

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/shrink.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/load_doubles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Adds elements to totals, or lets those that are lower or higher take their places. What rounding
// takes from a sum goes to rests. Where an element is NaN, x86 Min and Max give their second
// operand, so that the total stays.
template <ColumnStep kStep, class D>
HWY_INLINE void Combine(D d, hn::Vec<D> v, double* totals, double* rests) {
  const auto total = hn::LoadU(d, totals);
  if constexpr (kStep == ColumnStep::kLow) {
    hn::StoreU(hn::Min(v, total), d, totals);
  } else if constexpr (kStep == ColumnStep::kHigh) {
    hn::StoreU(hn::Max(v, total), d, totals);
  } else {
    const auto sum = hn::Add(total, v);
    if constexpr (kStep == ColumnStep::kAddCompensated) {
      const auto added = hn::Sub(sum, total);
      const auto lost = hn::Add(hn::Sub(total, hn::Sub(sum, added)), hn::Sub(v, added));
      hn::StoreU(hn::Add(hn::LoadU(d, rests), lost), d, rests);
    }
    hn::StoreU(sum, d, totals);
  }
}

// Combines a row with the totals of its columns; returns whether an element was missing and so left
// out.
template <ColumnStep kStep, class T>
bool CombineRow(const T* HWY_RESTRICT x, std::size_t n, double* HWY_RESTRICT totals,
                double* HWY_RESTRICT rests) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNothing = kStep == ColumnStep::kLow    ? kInfinity
                              : kStep == ColumnStep::kHigh ? -kInfinity
                                                           : 0;
  bool has_missing = false;
  const auto step = [&](auto d, std::size_t i) HWY_ATTR {
    auto v = LoadDoubles(d, x + i);
    if constexpr (std::same_as<T, double>) {
      const auto missing = hn::Eq(v, hn::Set(d, kMissing));
      has_missing |= !hn::AllFalse(d, missing);
      v = hn::IfThenElse(missing, hn::Set(d, kNothing), v);
    }
    Combine<kStep>(d, v, totals + i, rests + i);
  };
  const hn::ScalableTag<double> d;
  const hn::CappedTag<double, 1> one;
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= n; i += hn::Lanes(d)) step(d, i);
  for (; i < n; ++i) step(one, i);
  return has_missing;
}

std::size_t VectorSize() { return hn::Lanes(hn::ScalableTag<double>()); }

// The medians of as many blocks side by side as a vector has lanes, one block to a lane.
void SortedMedians(const double* x, std::size_t stride, std::size_t rows, std::size_t cols,
                   const SortingNetwork& network, double* medians) {
  using D = hn::ScalableTag<double>;
  const D d;
  constexpr std::size_t kLanes = hn::MaxLanes(D());
  HWY_ALIGN double values[SortingNetwork::kMost * kLanes];
  HWY_ALIGN double absent[kLanes], nans[kLanes];
  const hn::RebindToSigned<D> index;
  const auto blocks = hn::Mul(hn::Iota(index, 0), hn::Set(index, static_cast<std::int64_t>(cols)));
  auto missing_count = hn::Zero(d), nan_count = hn::Zero(d);
  const auto one = hn::Set(d, 1.0);
  for (std::size_t r = 0; r < rows; ++r) {
    for (std::size_t c = 0; c < cols; ++c) {
      const auto v = hn::GatherIndex(d, x + r * stride + c, blocks);
      const auto missing = hn::Eq(v, hn::Set(d, kMissing));
      const auto nan = hn::IsNaN(v);
      missing_count = hn::Add(missing_count, hn::IfThenElseZero(missing, one));
      nan_count = hn::Add(nan_count, hn::IfThenElseZero(nan, one));
      const auto last = hn::Set(d, std::numeric_limits<double>::infinity());
      hn::Store(hn::IfThenElse(hn::Or(missing, nan), last, v), d, values + (r * cols + c) * kLanes);
    }
  }
  for (std::size_t k = 0; k < network.size; ++k) {
    double* const low = values + network.pairs[k].low * kLanes;
    double* const high = values + network.pairs[k].high * kLanes;
    const auto a = hn::Load(d, low), b = hn::Load(d, high);
    hn::Store(hn::Min(a, b), d, low);
    hn::Store(hn::Max(a, b), d, high);
  }
  hn::Store(missing_count, d, absent);
  hn::Store(nan_count, d, nans);
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    const std::size_t count = rows * cols - static_cast<std::size_t>(absent[lane]);
    const std::size_t numbers = count - static_cast<std::size_t>(nans[lane]);
    const auto value = [&](std::size_t k) { return values[k * kLanes + lane]; };
    medians[lane] = MedianOfSorted(value, numbers, count);
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

SortingNetwork::SortingNetwork(std::size_t count) {
  std::size_t top = 1;
  while (2 * top < count) top *= 2;
  for (std::size_t p = top; p > 0; p /= 2) {
    std::size_t distance = p, remainder = 0;
    for (std::size_t q = top;; q /= 2) {
      for (std::size_t i = 0; i + distance < count; ++i) {
        if ((i & p) != remainder) continue;
        pairs[size++] = {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(i + distance)};
      }
      if (q == p) break;
      distance = q - p;
      remainder = p;
    }
  }
}

namespace {

// A block and where it stands.
struct BlockPlace {
  std::size_t row, col, rows, cols;
  double Area() const { return static_cast<double>(rows) * static_cast<double>(cols); }
};

// What the columns of a block come to.
struct BlockTotal {
  double value, rest = 0, missing = 0;
};

template <ColumnStep kStep>
constexpr double Start() {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  return kStep == ColumnStep::kLow ? kInfinity : kStep == ColumnStep::kHigh ? -kInfinity : 0;
}

template <ColumnStep kStep>
void Combine(BlockTotal& total, double value, double rest) {
  if constexpr (kStep == ColumnStep::kLow) {
    total.value = std::min(total.value, value);
  } else if constexpr (kStep == ColumnStep::kHigh) {
    total.value = std::max(total.value, value);
  } else {
    const double sum = total.value + value;
    if constexpr (kStep == ColumnStep::kAddCompensated) {
      const double added = sum - total.value;
      total.rest += (total.value - (sum - added)) + (value - added) + rest;
    }
    total.value = sum;
  }
}

// Reduces bands of rows column by column, and the columns to blocks.
template <ColumnStep kStep, class T, class Finish>
class ColumnReduction {
 public:
  ColumnReduction(MatrixSpan<const T> x, std::size_t row_factor, std::size_t col_factor,
                  Finish finish)
      : x_(x), row_factor_(row_factor), col_factor_(col_factor), finish_(finish) {}

  void Run(MatrixSpan<double> out) {
    for (std::size_t i = 0; i < out.rows; ++i) {
      const std::size_t row = i * row_factor_;
      Band(row, std::min(row_factor_, x_.rows - row), out.Row(i));
    }
  }

 private:
  void Band(std::size_t row, std::size_t rows, std::span<double> out) {
    BlockTotal total{Start<kStep>()};
    std::size_t block = 0, block_col = 0;
    for (std::size_t col = 0; col < x_.cols; col += kBlockSize) {
      const std::size_t count = std::min(kBlockSize, x_.cols - col);
      const bool has_missing = CombineRows(row, rows, col, count);
      for (std::size_t c = 0; c < count; ++c) {
        Combine<kStep>(total, totals_[c], rests_[c]);
        if (has_missing) total.missing += missing_[c];
        const std::size_t width = col + c + 1 - block_col;
        if (width < col_factor_ && col + c + 1 < x_.cols) continue;
        out[block++] = finish_(total, BlockPlace{row, block_col, rows, width});
        total = {Start<kStep>()};
        block_col = col + c + 1;
      }
    }
  }

  // Returns whether an element of these columns was missing; missing_ is then their numbers.
  bool CombineRows(std::size_t row, std::size_t rows, std::size_t col, std::size_t count) {
    std::fill_n(totals_.begin(), count, Start<kStep>());
    if constexpr (kStep == ColumnStep::kAddCompensated) std::fill_n(rests_.begin(), count, 0);
    bool has_missing = false;
    for (std::size_t r = row; r < row + rows; ++r) {
      const auto part = x_.Row(r).subspan(col, count);
      ForEachLoadableBlock(part, [&]<class U>(std::span<const U> values, std::size_t /*offset*/) {
        const auto combine = VELA_KERNEL_DISPATCH(CombineRow<kStep, U>);
        if (combine(values.data(), count, totals_.data(), rests_.data())) {
          if (!has_missing) std::fill_n(missing_.begin(), count, 0);
          has_missing = true;
          for (std::size_t c = 0; c < count; ++c) missing_[c] += IsMissing(part[c]) ? 1 : 0;
        }
        return true;
      });
    }
    return has_missing;
  }

  MatrixSpan<const T> x_;
  std::size_t row_factor_, col_factor_;
  Finish finish_;
  std::array<double, kBlockSize> totals_, rests_, missing_;
};

template <ColumnStep kStep, class T, class Finish>
void ReduceColumns(MatrixSpan<const T> x, std::size_t row_factor, std::size_t col_factor,
                   MatrixSpan<double> out, Finish finish) {
  ColumnReduction<kStep, T, Finish>(x, row_factor, col_factor, finish).Run(out);
}

template <class T, class Visit>
void VisitPresent(MatrixSpan<const T> x, const BlockPlace& place, Visit visit) {
  for (std::size_t r = place.row; r < place.row + place.rows; ++r) {
    for (const T value : x.Row(r).subspan(place.col, place.cols)) {
      if (!IsMissing(value) && !visit(static_cast<double>(value))) return;
    }
  }
}

template <class T>
double AddRowByRow(MatrixSpan<const T> x, const BlockPlace& place) {
  double sum = 0;
  VisitPresent(x, place, [&](double value) {
    sum += value;
    return true;
  });
  return sum;
}

// An extreme of the numbers, unless the first element that is not missing is NaN or there is none.
template <class T>
double ExtremeOf(MatrixSpan<const T> x, const BlockPlace& place, double extreme) {
  if constexpr (std::floating_point<T>) {
    double first = kMissing;
    VisitPresent(x, place, [&](double value) {
      first = value;
      return false;
    });
    if (std::isnan(first) || IsMissing(first)) return first;
  }
  return extreme;
}

template <class T>
void ShrinkToSum(MatrixSpan<const T> x, std::size_t row_factor, std::size_t col_factor, bool mean,
                 MatrixSpan<double> out) {
  const auto finish = [&](const BlockTotal& total, const BlockPlace& place) {
    const double count = place.Area() - total.missing;
    if (count == 0) return kMissing;
    double sum = total.value + total.rest;
    if (!std::isfinite(sum)) sum = AddRowByRow(x, place);
    return mean ? sum / count : sum;
  };
  constexpr std::size_t kMostPlain = 64;
  const std::size_t most_rows = std::min(row_factor, x.rows);
  if (most_rows <= kMostPlain && most_rows * std::min(col_factor, x.cols) <= kMostPlain) {
    ReduceColumns<ColumnStep::kAdd>(x, row_factor, col_factor, out, finish);
  } else {
    ReduceColumns<ColumnStep::kAddCompensated>(x, row_factor, col_factor, out, finish);
  }
}

template <class T>
double MedianOfBlock(MatrixSpan<const T> x, const BlockPlace& place, std::vector<double>& numbers) {
  numbers.clear();
  std::size_t count = 0;
  VisitPresent(x, place, [&](double value) {
    ++count;
    if (!std::isnan(value)) numbers.push_back(value);
    return true;
  });
  if (count / 2 < numbers.size()) {
    const auto upper = numbers.begin() + static_cast<std::ptrdiff_t>(count / 2);
    std::nth_element(numbers.begin(), upper, numbers.end());
    if (count % 2 == 0) std::iter_swap(upper - 1, std::max_element(numbers.begin(), upper));
  }
  return MedianOfSorted([&](std::size_t k) { return numbers[k]; }, numbers.size(), count);
}

// Blocks of few elements are sorted side by side, the others one by one.
template <class T>
class MedianReduction {
 public:
  MedianReduction(MatrixSpan<const T> x, std::size_t row_factor, std::size_t col_factor)
      : x_(x), row_factor_(row_factor), col_factor_(col_factor) {
    numbers_.reserve(std::min(row_factor, x.rows) * std::min(col_factor, x.cols));
  }

  void Run(MatrixSpan<double> out) {
    for (std::size_t i = 0; i < out.rows; ++i) {
      const std::size_t row = i * row_factor_, rows = std::min(row_factor_, x_.rows - row);
      std::size_t j = SortSideBySide(row, rows, out.Row(i));
      for (; j < out.cols; ++j) {
        const std::size_t col = j * col_factor_, cols = std::min(col_factor_, x_.cols - col);
        out(i, j) = MedianOfBlock(x_, {row, col, rows, cols}, numbers_);
      }
    }
  }

 private:
  // Returns how many blocks of the band are done.
  std::size_t SortSideBySide(std::size_t row, std::size_t rows, std::span<double> out) {
    const std::size_t area = rows * col_factor_;
    if (area > SortingNetwork::kMost || col_factor_ > x_.cols) return 0;
    if (area != network_area_) {
      network_ = SortingNetwork(area);
      network_area_ = area;
    }
    const std::size_t step = VELA_KERNEL_DISPATCH(VectorSize)();
    const auto medians = VELA_KERNEL_DISPATCH(SortedMedians);
    const std::size_t whole = x_.cols / col_factor_ / step * step;
    // Elements are not loaded right after they were converted: a gathering load would wait for
    // that.
    const std::size_t most = std::same_as<T, double> ? whole : kConverted / area / step * step;
    for (std::size_t j = 0; j < whole; j += most) {
      const std::size_t count = std::min(most, whole - j);
      const auto [from, stride] = Doubles(row, rows, j * col_factor_, count * col_factor_);
      for (std::size_t k = 0; k < count; k += step) {
        medians(from + k * col_factor_, stride, rows, col_factor_, network_, &out[j + k]);
      }
    }
    return whole;
  }

  struct DoubleRows {
    const double* data;
    std::size_t stride;
  };
  DoubleRows Doubles(std::size_t row, std::size_t rows, std::size_t col, std::size_t cols) {
    if constexpr (std::same_as<T, double>) {
      return {&x_(row, col), x_.cols};
    } else {
      for (std::size_t r = 0; r < rows; ++r) {
        Convert<double, T>(x_.Row(row + r).subspan(col, cols),
                           std::span(converted_).subspan(r * cols, cols));
      }
      return {converted_.data(), cols};
    }
  }

  static constexpr std::size_t kConverted = 4096;

  MatrixSpan<const T> x_;
  std::size_t row_factor_, col_factor_;
  SortingNetwork network_{0};
  std::size_t network_area_ = 0;
  std::array<double, std::same_as<T, double> ? 0 : kConverted> converted_;
  std::vector<double> numbers_;
};

}  // namespace

template <Element T>
void Shrink(MatrixSpan<const T> x, std::size_t row_factor, std::size_t col_factor,
            BlockStatistic statistic, MatrixSpan<double> out) {
  if (x.IsEmpty()) return;
  if (x.cols == 1 && x.rows > 1) {
    return Shrink(MatrixSpan<const T>(x.data, 1, x.rows), 1, row_factor, statistic,
                  MatrixSpan<double>(out.data, 1, out.rows));
  }
  const auto extreme = [x](const BlockTotal& total, const BlockPlace& place) {
    return ExtremeOf(x, place, total.value);
  };
  const auto count = [](const BlockTotal& total, const BlockPlace& place) {
    return place.Area() - total.missing;
  };
  switch (statistic) {
    case BlockStatistic::kSum:
    case BlockStatistic::kMean:
      return ShrinkToSum(x, row_factor, col_factor, statistic == BlockStatistic::kMean, out);
    case BlockStatistic::kMinimum:
      return ReduceColumns<ColumnStep::kLow>(x, row_factor, col_factor, out, extreme);
    case BlockStatistic::kMaximum:
      return ReduceColumns<ColumnStep::kHigh>(x, row_factor, col_factor, out, extreme);
    case BlockStatistic::kMedian:
      return MedianReduction<T>(x, row_factor, col_factor).Run(out);
    case BlockStatistic::kCount:
      return ReduceColumns<ColumnStep::kAdd>(x, row_factor, col_factor, out, count);
  }
}

#define VELA_KERNEL_INSTANTIATE(T)                                                       \
  template void Shrink<T>(MatrixSpan<const T>, std::size_t, std::size_t, BlockStatistic, \
                          MatrixSpan<double>);
VELA_KERNEL_INSTANTIATE(char)
VELA_KERNEL_INSTANTIATE(unsigned char)
VELA_KERNEL_INSTANTIATE(short)
VELA_KERNEL_INSTANTIATE(unsigned short)
VELA_KERNEL_INSTANTIATE(int)
VELA_KERNEL_INSTANTIATE(unsigned int)
VELA_KERNEL_INSTANTIATE(float)
VELA_KERNEL_INSTANTIATE(double)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

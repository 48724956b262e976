#include "kernel/correlate.h"

#include <algorithm>
#include <concepts>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include "kernel/correlation_plan.h"
#include "kernel/dispatch.h"
#include "kernel/padded_bands.h"

#ifndef VELA_KERNEL_CORRELATE_JOB
#define VELA_KERNEL_CORRELATE_JOB
namespace vela::kernel {
namespace {

// How far a sum can be trusted that was not found by adding the rounded products row by row.
enum class Trust {
  kFull,      // as good, or the same
  kFinite,    // only where it is finite: else the products decide
  kNotWhole,  // only where rounding cannot have moved it across a whole number
};

// One band of a matrix. Rows are of doubles; neighbouring elements are `step` of them apart.
struct CorrelationJob {
  const CorrelationPlan* plan;
  Trust trust;
  bool is_separable, is_plain;  // is_plain: round the products
  bool is_whole;                // of whole numbers, which need their products rounded in doubt
  std::size_t step;
  const double* const* rows;  // extended
  double* const* sums;        // of the rows times the plan's row, for a separable kernel
  std::size_t fresh;          // the sums from here on are still to be found
  std::size_t count;
  void* out;
  std::size_t width;  // of out
};

}  // namespace
}  // namespace vela::kernel
#endif

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/correlate.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"
#include "kernel/unroll-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using DoubleTag = hn::ScalableTag<double>;
using DoubleVec = hn::Vec<DoubleTag>;
constexpr DoubleTag kDouble;
constexpr std::size_t kLanes = hn::MaxLanes(kDouble);

// Rows and vectors of results that are summed at once, as many as the registers hold: each vector
// that is loaded serves all the rows.
constexpr std::size_t kTileRows = 4;
constexpr std::size_t kMostVectors = 4;
template <std::size_t kRows>
constexpr std::size_t kTileVectors = HWY_TARGET == HWY_AVX3 || kRows < kTileRows ? kMostVectors : 2;

// A kernel of so many rows and columns.
struct Weights {
  const double* values;
  std::size_t rows, cols;
};

template <bool kFused>
HWY_INLINE DoubleVec AddProduct(DoubleVec weight, DoubleVec x, DoubleVec sum) {
  if constexpr (kFused) return hn::MulAdd(weight, x, sum);
  return hn::Add(hn::Mul(weight, x), sum);
}

// The sums of a tile's elements: kRows rows of kVectors vectors, from a kernel of kCols columns, or
// of any number where that is 0.
template <std::size_t kRows, std::size_t kVectors, std::size_t kCols, bool kFused>
struct Tile {
  DoubleVec sum[kRows][kVectors];

  // Adds an extended row's products to the tile's rows kFirst .. kLast - 1; `weights` are those
  // for row kFirst.
  template <std::size_t kFirst, std::size_t kLast>
  HWY_INLINE void AddRow(const double* HWY_RESTRICT x, std::size_t step,
                         const double* HWY_RESTRICT weights, std::size_t cols) {
    if constexpr (kCols > 0) {
      Unroll<kCols>([&](auto j) VELA_KERNEL_UNROLLED {
        AddColumn<kFirst, kLast>(x + j * step, weights + j, kCols);
      });
    } else {
      for (std::size_t j = 0; j < cols; ++j) {
        AddColumn<kFirst, kLast>(x + j * step, weights + j, cols);
      }
    }
  }

  template <std::size_t kFirst, std::size_t kLast>
  HWY_INLINE void AddColumn(const double* HWY_RESTRICT x, const double* HWY_RESTRICT weights,
                            std::size_t cols) {
    DoubleVec value[kVectors];
    Unroll<kVectors>([&](auto v)
                         VELA_KERNEL_UNROLLED { value[v] = hn::LoadU(kDouble, x + v * kLanes); });
    Unroll<kLast - kFirst>([&](auto r) VELA_KERNEL_UNROLLED {
      const DoubleVec weight = hn::Set(kDouble, *(weights - r * cols));
      Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED {
        sum[kFirst + r][v] = AddProduct<kFused>(weight, value[v], sum[kFirst + r][v]);
      });
    });
  }

  // Every sum adds up its products row by row. Needs weights.rows >= kRows.
  HWY_INLINE void Sum(const double* const* rows, std::size_t column, std::size_t step,
                      const Weights& weights) {
    Unroll<kRows>([&](auto r) VELA_KERNEL_UNROLLED {
      Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED { sum[r][v] = hn::Zero(kDouble); });
    });
    std::size_t i = 0;
    const auto add = [&]<std::size_t kFirst, std::size_t kLast>() VELA_KERNEL_UNROLLED {
      AddRow<kFirst, kLast>(rows[i] + column, step, weights.values + (i - kFirst) * weights.cols,
                            weights.cols);
      ++i;
    };
    if constexpr (kRows > 1) add.template operator()<0, 1>();
    if constexpr (kRows > 2) add.template operator()<0, 2>();
    if constexpr (kRows > 3) add.template operator()<0, 3>();
    while (i < weights.rows) add.template operator()<0, kRows>();
    if constexpr (kRows > 1) add.template operator()<1, kRows>();
    if constexpr (kRows > 2) add.template operator()<2, kRows>();
    if constexpr (kRows > 3) add.template operator()<3, kRows>();
  }
};

// Stores the first `count` lanes of v, at most all, by ConvertElement.
template <class T>
HWY_INLINE void StoreLanes(DoubleVec v, T* to, std::size_t count) {
  using Lane = LaneOf<T>;
  const hn::Rebind<Lane, DoubleTag> d;
  hn::Vec<decltype(d)> result;
  if constexpr (std::same_as<T, double>) {
    result = v;
  } else if constexpr (std::same_as<T, float>) {
    result = hn::DemoteTo(d, v);
  } else if constexpr (std::same_as<T, unsigned int>) {
    // In the last bits of a double of this size stands the whole number itself.
    const DoubleVec limit = hn::Set(kDouble, std::numeric_limits<unsigned int>::max());
    const DoubleVec inside = hn::Min(hn::Max(v, hn::Zero(kDouble)), limit);
    const DoubleVec shifted = hn::Add(hn::Trunc(inside), hn::Set(kDouble, 0x1p52));
    result = hn::TruncateTo(d, hn::BitCast(hn::RebindToUnsigned<DoubleTag>(), shifted));
  } else {
    const hn::Rebind<std::int32_t, DoubleTag> wide;
    const auto number = hn::DemoteTo(wide, hn::IfThenZeroElse(hn::IsNaN(v), v));
    if constexpr (std::same_as<T, int>) {
      result = number;
    } else {
      result = hn::DemoteTo(d, number);
    }
  }
  auto* const lanes = reinterpret_cast<Lane*>(to);
  if (HWY_LIKELY(count >= kLanes)) {
    hn::StoreU(result, d, lanes);
  } else {
    HWY_ALIGN Lane all[kLanes];
    hn::Store(result, d, all);
    std::memcpy(lanes, all, count * sizeof(Lane));
  }
}

// Sums of as many columns as stay near the processor, for the rows of a tile.
struct Lines {
  static constexpr std::size_t kColumns = 512;
  HWY_ALIGN double sums[kTileRows][kColumns + kMostVectors * kLanes];
};

// Sums of the windows in kRows rows from rows[0] on and `count` columns from `column` on; up to a
// tile more are written.
template <std::size_t kRows, std::size_t kCols, bool kFused>
HWY_NOINLINE void SumWindows(const double* const* rows, std::size_t column, std::size_t count,
                             std::size_t step, const Weights& weights, Lines& lines) {
  constexpr std::size_t kVectors = kTileVectors<kRows>;
  for (std::size_t c = 0; c < count; c += kVectors * kLanes) {
    Tile<kRows, kVectors, kCols, kFused> tile;
    tile.Sum(rows, column + c, step, weights);
    Unroll<kRows>([&](auto r) VELA_KERNEL_UNROLLED {
      Unroll<kVectors>([&](auto v) VELA_KERNEL_UNROLLED {
        hn::Store(tile.sum[r][v], kDouble, lines.sums[r] + c + v * kLanes);
      });
    });
  }
}

HWY_INLINE DoubleVec Divided(const CorrelationJob& job, DoubleVec sum) {
  const double divisor = job.plan->divisor;
  return divisor == 1.0 ? sum : hn::Div(sum, hn::Set(kDouble, divisor));
}

// One vector of results by adding the products row by row.
HWY_NOINLINE DoubleVec PlainResult(const CorrelationJob& job, std::size_t r, std::size_t column) {
  const CorrelationPlan& plan = *job.plan;
  const Weights kernel{plan.kernel, plan.side, plan.side};
  if (job.is_whole) {
    Tile<1, 1, 0, false> tile;
    tile.Sum(job.rows + r, column, job.step, kernel);
    return Divided(job, tile.sum[0][0]);
  }
  Tile<1, 1, 0, true> tile;
  tile.Sum(job.rows + r, column, job.step, kernel);
  return Divided(job, tile.sum[0][0]);
}

template <class T>
HWY_INLINE bool IsSure(const CorrelationJob& job, DoubleVec result) {
  if constexpr (std::floating_point<T>) {
    return job.trust == Trust::kFull || hn::AllTrue(kDouble, hn::IsFinite(result));
  }
  if (job.trust == Trust::kFull) return true;
  const auto distance = hn::Abs(hn::Sub(result, hn::Round(result)));
  const auto close = hn::Le(distance, hn::Set(kDouble, job.plan->uncertainty));
  if (HWY_LIKELY(hn::AllFalse(kDouble, close))) return true;
  // Both sides of 0 are truncated to it, and nothing depends on whole numbers out of range.
  const auto half = hn::Set(kDouble, 0.5);
  using Limits = std::numeric_limits<T>;
  const auto below = hn::Lt(result, hn::Set(kDouble, static_cast<double>(Limits::lowest()) - 0.5));
  const auto above = hn::Gt(result, hn::Set(kDouble, static_cast<double>(Limits::max()) + 0.5));
  const auto harmless = hn::Or(hn::Lt(hn::Abs(result), half), hn::Or(below, above));
  return hn::AllFalse(kDouble, hn::AndNot(harmless, close));
}

// Makes results of the sums of `count` columns in row r from `column` on.
template <class T, bool kPairs>
void Finish(const CorrelationJob& job, const double* HWY_RESTRICT sums, std::size_t r,
            std::size_t column, std::size_t count) {
  T* const out = static_cast<T*>(job.out) + r * job.width + column;
  for (std::size_t c = 0; c < count; c += kLanes) {
    DoubleVec result = Divided(job, hn::Load(kDouble, sums + c));
    if (HWY_UNLIKELY(!IsSure<T>(job, result))) result = PlainResult(job, r, column + c);
    if constexpr (std::floating_point<T> && !kPairs) {
      // A NaN stays: the processor's minimum and maximum are their second operand then.
      result = hn::Min(hn::Set(kDouble, std::numeric_limits<T>::max()), result);
      result = hn::Max(hn::Set(kDouble, std::numeric_limits<T>::lowest()), result);
    }
    StoreLanes(result, out + c, count - c);
  }
}

using FinishFunction = decltype(&Finish<double, false>);

template <std::size_t kRows, std::size_t kCols, bool kFused>
void FilterRows(const CorrelationJob& job, const double* const* rows, std::size_t& r,
                const Weights& weights, FinishFunction finish) {
  Lines lines;
  const std::size_t step = weights.cols == 1 ? 1 : job.step;
  for (; r + kRows <= job.count; r += kRows) {
    for (std::size_t column = 0; column < job.width; column += Lines::kColumns) {
      const std::size_t count = std::min(Lines::kColumns, job.width - column);
      SumWindows<kRows, kCols, kFused>(rows + r, column, count, step, weights, lines);
      for (std::size_t k = 0; k < kRows; ++k) finish(job, lines.sums[k], r + k, column, count);
    }
  }
}

void SumRows(const CorrelationJob& job) {
  const CorrelationPlan& plan = *job.plan;
  const Weights row{plan.row.data(), 1, plan.side};
  Lines lines;
  for (std::size_t i = job.fresh; i < job.count + plan.side - 1; ++i) {
    for (std::size_t column = 0; column < job.width; column += Lines::kColumns) {
      const std::size_t count = std::min(Lines::kColumns, job.width - column);
      SumWindows<1, 0, true>(job.rows + i, column, count, job.step, row, lines);
      std::memcpy(job.sums[i] + column, lines.sums[0], count * sizeof(double));
    }
  }
}

template <std::size_t kCols, bool kFused>
void Filter(const CorrelationJob& job, const double* const* rows, const Weights& weights,
            FinishFunction finish) {
  std::size_t r = 0;
  if constexpr (kCols == 3) {
    FilterRows<2, kCols, kFused>(job, rows, r, weights, finish);
  } else if (weights.rows >= kTileRows) {
    FilterRows<kTileRows, kCols, kFused>(job, rows, r, weights, finish);
  }
  FilterRows<1, kCols, kFused>(job, rows, r, weights, finish);
}

HWY_NOINLINE void FilterBandWith(const CorrelationJob& job, FinishFunction finish) {
  const CorrelationPlan& plan = *job.plan;
  const Weights kernel{plan.kernel, plan.side, plan.side};
  if (job.is_separable) {
    SumRows(job);
    Filter<1, true>(job, job.sums, Weights{plan.column.data(), plan.side, 1}, finish);
  } else if (job.is_plain) {
    Filter<0, false>(job, job.rows, kernel, finish);
  } else if (plan.side == 3) {
    Filter<3, true>(job, job.rows, kernel, finish);
  } else {
    Filter<0, true>(job, job.rows, kernel, finish);
  }
}

template <class T, bool kPairs>
void FilterBand(const CorrelationJob& job) {
  FilterBandWith(job, &Finish<T, kPairs>);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

struct Pair {
  double re, im;
};

// Cell: what stands in a column, `step` numbers of T that are kept as Kept.
template <class T, class Cell, class Kept>
bool CorrelateCells(MatrixSpan<Cell> x, MatrixSpan<const double> kernel, EdgeMode mode,
                    bool normalise) {
  constexpr bool kPairs = std::same_as<Cell, Pair>;
  constexpr bool kWhole = std::integral<T>;
  constexpr std::size_t kStep = kPairs ? 2 : 1;
  const WindowReach reach = WindowReach::Square(kernel.rows, mode);
  if (!reach.Fits(x.rows, x.cols)) return false;
  if (x.IsEmpty()) return true;

  constexpr double kLargest = kWhole ? std::numeric_limits<T>::max() + 1.0 : 0.0;
  const CorrelationPlan plan(kernel, normalise, kWhole, kLargest);
  const bool is_plain = kWhole && !plan.exact && !(plan.uncertainty < 0.25);
  // Two passes over so few weights cost more than one.
  constexpr std::size_t kSmallSide = 4;
  const bool is_separable = !plan.row.empty() && !is_plain && plan.side > kSmallSide;
  Trust trust = Trust::kFull;
  if (kWhole && !plan.exact && !is_plain) trust = Trust::kNotWhole;
  if (!kWhole && is_separable) trust = Trust::kFinite;

  PaddedBands<Cell, Kept> bands(x, reach);
  const std::size_t width = x.cols * kStep;
  RowRing<double> sums(is_separable ? bands.MaxCount() + bands.Halo() : 0, width);
  std::vector<const double*> rows(bands.MaxCount() + bands.Halo());
  std::size_t last_count = 0;
  while (bands.Next()) {
    if (is_separable) sums.Advance(last_count);
    last_count = bands.Count();
    for (std::size_t i = 0; i < last_count + bands.Halo(); ++i) {
      rows[i] = reinterpret_cast<const double*>(bands.Rows()[i]);
    }
    const CorrelationJob job{.plan = &plan,
                             .trust = trust,
                             .is_separable = is_separable,
                             .is_plain = is_plain,
                             .is_whole = kWhole,
                             .step = kStep,
                             .rows = rows.data(),
                             .sums = sums.Rows(),
                             .fresh = bands.Fresh(),
                             .count = last_count,
                             .out = x.data + bands.First() * x.cols,
                             .width = width};
    VELA_KERNEL_DISPATCH(FilterBand<T, kPairs>)(job);
  }
  return true;
}

}  // namespace

template <Element T>
bool Correlate(MatrixSpan<T> x, MatrixSpan<const double> kernel, EdgeMode mode, bool normalise) {
  return CorrelateCells<T, T, double>(x, kernel, mode, normalise);
}

bool detail::CorrelatePairs(MatrixSpan<double> x, MatrixSpan<const double> kernel, EdgeMode mode,
                            bool normalise) {
  const MatrixSpan<Pair> pairs(reinterpret_cast<Pair*>(x.data), x.rows, x.cols / 2);
  return CorrelateCells<double, Pair, Pair>(pairs, kernel, mode, normalise);
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template bool Correlate(MatrixSpan<T>, MatrixSpan<const double>, EdgeMode, bool);
VELA_KERNEL_FOR_MATRIX_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

#include "kernel/moving_average.h"

#include <algorithm>
#include <vector>

#include "kernel/dispatch.h"
#include "kernel/line_start.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/moving_average.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Tiles that go side by side, and one number from each.
using D = hn::CappedTag<double, 4>;
using V = hn::Vec<D>;
constexpr D kD;
constexpr std::size_t kTiles = hn::MaxLanes(kD);

// One element of each tile.
HWY_INLINE V LoadElements(const double* from, std::size_t window) {
  HWY_ALIGN double elements[kTiles];
  for (std::size_t t = 0; t < kTiles; ++t) elements[t] = from[t * window];
  return hn::Load(kD, elements);
}

HWY_INLINE void StoreElements(V v, double* to, std::size_t window) {
  HWY_ALIGN double elements[kTiles];
  hn::Store(v, kD, elements);
  for (std::size_t t = 0; t < kTiles; ++t) to[t * window] = elements[t];
}

template <std::size_t kSize>
HWY_INLINE void Transpose(V (&row)[kSize]) {
  if constexpr (kSize == 2) {
    const V first = row[0];
    row[0] = hn::InterleaveLower(kD, first, row[1]);
    row[1] = hn::InterleaveUpper(kD, first, row[1]);
  } else {
    static_assert(kSize == 4);
    const V a = hn::InterleaveLower(kD, row[0], row[1]);
    const V b = hn::InterleaveUpper(kD, row[0], row[1]);
    const V c = hn::InterleaveLower(kD, row[2], row[3]);
    const V d = hn::InterleaveUpper(kD, row[2], row[3]);
    row[0] = hn::ConcatLowerLower(kD, c, a);
    row[1] = hn::ConcatLowerLower(kD, d, b);
    row[2] = hn::ConcatUpperUpper(kD, c, a);
    row[3] = hn::ConcatUpperUpper(kD, d, b);
  }
}

// As many vectors as each has numbers.
struct Square {
  V row[kTiles];

  // row[k] becomes element k of each tile.
  HWY_INLINE void LoadTiles(const double* from, std::size_t window) {
    for (std::size_t t = 0; t < kTiles; ++t) row[t] = hn::LoadU(kD, from + t * window);
    Transpose(row);
  }

  // The reverse of LoadTiles.
  HWY_INLINE void StoreTiles(double* to, std::size_t window) {
    Transpose(row);
    for (std::size_t t = 0; t < kTiles; ++t) hn::StoreU(row[t], kD, to + t * window);
  }
};

// The sums and counts of the elements of each tile so far. kHoles tells whether elements may be
// missing; without, nothing is counted.
template <bool kHoles>
struct Totals {
  V sum, count;

  HWY_INLINE Totals() : sum(hn::Zero(kD)), count(hn::Zero(kD)) {}

  HWY_INLINE void Add(V elements) {
    if constexpr (kHoles) {
      const auto missing = hn::Eq(elements, hn::Set(kD, kMissing));
      sum = hn::Add(sum, hn::IfThenZeroElse(missing, elements));
      count = hn::Add(count, hn::IfThenZeroElse(missing, hn::Set(kD, 1.0)));
    } else {
      sum = hn::Add(sum, elements);
    }
  }
  HWY_INLINE void Add(const Totals& other) {
    sum = hn::Add(sum, other.sum);
    if constexpr (kHoles) count = hn::Add(count, other.count);
  }
  HWY_INLINE void Save(double* saved) const {
    hn::StoreU(sum, kD, saved);
    if constexpr (kHoles) hn::StoreU(count, kD, saved + kTiles);
  }
  HWY_INLINE void Restore(const double* saved) {
    sum = hn::LoadU(kD, saved);
    if constexpr (kHoles) count = hn::LoadU(kD, saved + kTiles);
  }
  HWY_INLINE V Average(V window) const {
    if constexpr (kHoles) {
      const auto none = hn::Eq(count, hn::Zero(kD));
      return hn::IfThenElse(none, hn::Set(kD, kMissing), hn::Div(sum, count));
    } else {
      return hn::Div(sum, window);
    }
  }

  static constexpr std::size_t kSaved = kHoles ? 2 * kTiles : kTiles;
};

// Cuts x into kTiles tiles as long as the window, and one behind them. A window that begins in one
// of the tiles is a tail of it and a head of the next, and heads and tails are running sums; those
// of several tiles go side by side, as each has to wait for its own last addition. Writes the
// kTiles * window averages of the windows that begin in the tiles. Scratch: Totals::kSaved numbers
// for each element of a window.
template <bool kHoles>
void AverageTiles(const double* HWY_RESTRICT x, std::size_t window, double* HWY_RESTRICT tails,
                  double* HWY_RESTRICT out) {
  using TileTotals = Totals<kHoles>;
  constexpr std::size_t kSaved = TileTotals::kSaved;
  Square square;
  TileTotals tail;
  std::size_t j = window;
  for (; j >= kTiles; j -= kTiles) {
    square.LoadTiles(x + j - kTiles, window);
    for (std::size_t k = kTiles; k-- > 0;) {
      tail.Add(square.row[k]);
      tail.Save(tails + (j - kTiles + k) * kSaved);
    }
  }
  while (j-- > 0) {
    tail.Add(LoadElements(x + j, window));
    tail.Save(tails + j * kSaved);
  }

  const V divisor = hn::Set(kD, static_cast<double>(window));
  const auto average = [&](const TileTotals& head, std::size_t at) HWY_ATTR {
    tail.Restore(tails + at * kSaved);
    tail.Add(head);
    return tail.Average(divisor);
  };
  TileTotals head;
  // The last element behind the tiles belongs to no window, so the last averages are not a square.
  for (j = 0; j + kTiles < window; j += kTiles) {
    Square averages;
    square.LoadTiles(x + window + j, window);
    for (std::size_t k = 0; k < kTiles; ++k) {
      averages.row[k] = average(head, j + k);
      head.Add(square.row[k]);
    }
    averages.StoreTiles(out + j, window);
  }
  for (; j < window; ++j) {
    StoreElements(average(head, j), out + j, window);
    if (j + 1 == window) break;
    head.Add(LoadElements(x + window + j, window));
  }
}

bool HasMissing(const double* x, std::size_t n) {
  const hn::ScalableTag<double> d;
  const auto missing = hn::Set(d, kMissing);
  auto found = hn::MaskFromVec(hn::Zero(d));
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= n; i += hn::Lanes(d)) {
    found = hn::Or(found, hn::Eq(hn::LoadU(d, x + i), missing));
  }
  bool has = !hn::AllFalse(d, found);
  for (; i < n; ++i) has = has || IsMissing(x[i]);
  return has;
}

// Memory for the tails of one window, in which no vector straddles two cache lines.
class Scratch {
 public:
  double* Get(std::size_t size) {
    constexpr std::size_t kLine = 64;
    storage_.resize(size + kLine / sizeof(double));
    return storage_.data() + ElementsBeforeLine(storage_.data(), storage_.size());
  }

 private:
  std::vector<double> storage_;
};

// As AverageTiles, for whatever x holds.
void AverageGroup(const double* x, std::size_t window, Scratch& scratch, double* out) {
  if (HasMissing(x, (kTiles + 1) * window - 1)) {
    AverageTiles<true>(x, window, scratch.Get(Totals<true>::kSaved * window), out);
  } else {
    AverageTiles<false>(x, window, scratch.Get(Totals<false>::kSaved * window), out);
  }
}

// The first `results` averages of one tile, where too few tiles are left to go side by side. The
// results wait as tails where they will be, so that even a window as long as x needs no scratch.
void AverageTile(const double* HWY_RESTRICT x, std::size_t window, std::size_t results,
                 double* HWY_RESTRICT out) {
  double sum = 0.0;
  std::size_t count = 0;
  for (std::size_t j = window; j-- > 0;) {
    sum += IsMissing(x[j]) ? 0.0 : x[j];
    count += !IsMissing(x[j]);
    if (j < results) out[j] = sum;
  }
  double head = 0.0;
  for (std::size_t j = 0; j < results; ++j) {
    if (j > 0) {
      const double entering = x[window + j - 1];
      head += IsMissing(entering) ? 0.0 : entering;
      count += !IsMissing(entering);
      count -= !IsMissing(x[j - 1]);
    }
    out[j] = count == 0 ? kMissing : (out[j] + head) / static_cast<double>(count);
  }
}

// out[j] is the mean of x[j] ... x[j + window - 1] for j < n.
void AverageWindows(const double* x, std::size_t n, std::size_t window, double* out) {
  const std::size_t group = kTiles * window;
  if (n < group) {
    for (std::size_t j = 0; j < n; j += window) {
      AverageTile(x + j, window, std::min(window, n - j), out + j);
    }
  } else {
    Scratch scratch;
    // The last group may overlap the one before it.
    for (std::size_t j = 0; j < n; j += group) {
      const std::size_t begin = std::min(j, n - group);
      AverageGroup(x + begin, window, scratch, out + begin);
    }
  }
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

// The results whose windows are cut by the end that both iterators start from.
template <class In, class Out>
void AverageFromEnd(In x, std::size_t results, Out out) {
  double sum = 0.0;
  std::size_t count = 0;
  const auto add = [&](double value) {
    sum += IsMissing(value) ? 0.0 : value;
    count += !IsMissing(value);
  };
  for (std::size_t i = 0; i < results; ++i) {
    add(*x++);
    *out++ = count == 0 ? kMissing : sum / static_cast<double>(count);
    add(*x++);
  }
}

}  // namespace

void MovingAverage(std::span<const double> x, std::size_t half, std::span<double> out) {
  const std::size_t n = x.size();
  if (n == 0) return;
  half = std::min(half, (n - 1) / 2);
  AverageFromEnd(x.begin(), half, out.begin());
  AverageFromEnd(x.rbegin(), half, out.rbegin());
  VELA_KERNEL_DISPATCH(AverageWindows)(x.data(), n - 2 * half, 2 * half + 1, out.data() + half);
}

}  // namespace vela::kernel
#endif

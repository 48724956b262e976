#include "kernel/moving_average.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "kernel/dispatch.h"
#include "kernel/missing.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/moving_average.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

// Tiles that go side by side, and one number from each.
constexpr std::size_t kTiles = 4;
typedef double Vector __attribute__((vector_size(kTiles * sizeof(double))));

HWY_INLINE void Load(const double* from, Vector& vector) {
  std::memcpy(&vector, from, sizeof(vector));
}

HWY_INLINE void Store(const Vector& vector, double* to) {
  std::memcpy(to, &vector, sizeof(vector));
}

// One element of each tile.
HWY_INLINE void LoadTiles(const double* from, std::size_t window, Vector& vector) {
  for (std::size_t t = 0; t < kTiles; ++t) vector[t] = from[t * window];
}

// As many vectors as each has numbers.
struct Square {
  Vector row[kTiles];

  HWY_INLINE void Transpose() {
    static_assert(kTiles == 4);
    const Vector a = __builtin_shufflevector(row[0], row[1], 0, 4, 2, 6);
    const Vector b = __builtin_shufflevector(row[0], row[1], 1, 5, 3, 7);
    const Vector c = __builtin_shufflevector(row[2], row[3], 0, 4, 2, 6);
    const Vector d = __builtin_shufflevector(row[2], row[3], 1, 5, 3, 7);
    row[0] = __builtin_shufflevector(a, c, 0, 1, 4, 5);
    row[1] = __builtin_shufflevector(b, d, 0, 1, 4, 5);
    row[2] = __builtin_shufflevector(a, c, 2, 3, 6, 7);
    row[3] = __builtin_shufflevector(b, d, 2, 3, 6, 7);
  }

  // row[k] becomes element k of each tile.
  HWY_INLINE void LoadTiles(const double* from, std::size_t window) {
    for (std::size_t t = 0; t < kTiles; ++t) Load(from + t * window, row[t]);
    Transpose();
  }

  // The reverse of LoadTiles.
  HWY_INLINE void StoreTiles(double* to, std::size_t window) {
    Transpose();
    for (std::size_t t = 0; t < kTiles; ++t) Store(row[t], to + t * window);
  }
};

// The sums and counts of the elements of each tile so far. kHoles tells whether elements may be
// missing; without, nothing is counted.
template <bool kHoles>
struct Totals {
  Vector sum = {}, count = {};

  HWY_INLINE void Add(const Vector& elements) {
    if constexpr (kHoles) {
      const Vector zero = {};
      sum += elements == kMissing ? zero : elements;
      count += elements == kMissing ? zero : zero + 1.0;
    } else {
      sum += elements;
    }
  }
  HWY_INLINE void Add(const Totals& other) {
    sum += other.sum;
    if constexpr (kHoles) count += other.count;
  }
  HWY_INLINE void Save(double* saved) const {
    Store(sum, saved);
    if constexpr (kHoles) Store(count, saved + kTiles);
  }
  HWY_INLINE void Restore(const double* saved) {
    Load(saved, sum);
    if constexpr (kHoles) Load(saved + kTiles, count);
  }
  HWY_INLINE void Average(std::size_t window, Vector& average) const {
    if constexpr (kHoles) {
      average = count == 0.0 ? Vector{} + kMissing : sum / count;
    } else {
      average = sum / static_cast<double>(window);
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
  Vector vector;
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
    LoadTiles(x + j, window, vector);
    tail.Add(vector);
    tail.Save(tails + j * kSaved);
  }

  const auto average = [&](const TileTotals& head, std::size_t at, Vector& averages) HWY_ATTR {
    tail.Restore(tails + at * kSaved);
    tail.Add(head);
    tail.Average(window, averages);
  };
  TileTotals head;
  // The last element behind the tiles belongs to no window, so the last averages are not a square.
  for (j = 0; j + kTiles < window; j += kTiles) {
    Square averages;
    square.LoadTiles(x + window + j, window);
    for (std::size_t k = 0; k < kTiles; ++k) {
      average(head, j + k, averages.row[k]);
      head.Add(square.row[k]);
    }
    averages.StoreTiles(out + j, window);
  }
  for (; j < window; ++j) {
    average(head, j, vector);
    for (std::size_t t = 0; t < kTiles; ++t) out[t * window + j] = vector[t];
    if (j + 1 == window) break;
    LoadTiles(x + window + j, window, vector);
    head.Add(vector);
  }
}

bool HasMissing(const double* x, std::size_t n) {
  std::size_t missing = 0;
  for (std::size_t i = 0; i < n; ++i) missing += IsMissing(x[i]);
  return missing > 0;
}

// As AverageTiles, for whatever x holds.
void AverageGroup(const double* x, std::size_t window, std::vector<double>& scratch, double* out) {
  if (HasMissing(x, (kTiles + 1) * window - 1)) {
    scratch.resize(Totals<true>::kSaved * window);
    AverageTiles<true>(x, window, scratch.data(), out);
  } else {
    scratch.resize(Totals<false>::kSaved * window);
    AverageTiles<false>(x, window, scratch.data(), out);
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
    std::vector<double> scratch;
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

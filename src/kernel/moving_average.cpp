#include "kernel/moving_average.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "kernel/missing.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/moving_average.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

// Tiles that go side by side, and one number from each.
constexpr std::size_t kTiles = 4;
typedef double Vector __attribute__((vector_size(kTiles * sizeof(double))));

// The tails of a tile, side by side with those of its neighbours.
void Save(const Vector& vector, std::size_t j, double* tails) {
  std::memcpy(tails + j * kTiles, &vector, sizeof(Vector));
}

void Restore(const double* tails, std::size_t j, Vector& vector) {
  std::memcpy(&vector, tails + j * kTiles, sizeof(Vector));
}

// Cuts x into kTiles tiles as long as the window, and one behind them. A window that begins in one
// of the tiles is a tail of it and a head of the next, and heads and tails are running sums; those
// of several tiles go side by side, as each has to wait for its own last addition. Writes the
// kTiles * window averages of the windows that begin in the tiles. kHoles tells whether elements
// may be missing. Scratch: kTiles * window elements in sums, and with kHoles as many in counts.
template <bool kHoles>
void AverageTiles(const double* HWY_RESTRICT x, std::size_t window, double* HWY_RESTRICT sums,
                  double* HWY_RESTRICT counts, double* HWY_RESTRICT out) {
  const auto add = [window](const double* HWY_RESTRICT from, Vector& sum, Vector& count) HWY_ATTR {
    Vector value = {}, one = {};
    for (std::size_t t = 0; t < kTiles; ++t) {
      const double element = from[t * window];
      value[t] = kHoles && IsMissing(element) ? 0.0 : element;
      one[t] = kHoles && IsMissing(element) ? 0.0 : 1.0;
    }
    sum += value;
    if constexpr (kHoles) count += one;
  };

  Vector sum = {}, count = {};
  for (std::size_t j = window; j-- > 0;) {
    add(x + j, sum, count);
    Save(sum, j, sums);
    if constexpr (kHoles) Save(count, j, counts);
  }
  Vector head_sum = {}, head_count = {};
  for (std::size_t j = 0; j < window; ++j) {
    if (j > 0) add(x + window + j - 1, head_sum, head_count);
    Restore(sums, j, sum);
    sum += head_sum;
    if constexpr (kHoles) {
      Restore(counts, j, count);
      count += head_count;
      for (std::size_t t = 0; t < kTiles; ++t) {
        out[t * window + j] = count[t] == 0.0 ? kMissing : sum[t] / count[t];
      }
    } else {
      sum /= static_cast<double>(window);
      for (std::size_t t = 0; t < kTiles; ++t) out[t * window + j] = sum[t];
    }
  }
}

bool HasMissing(const double* x, std::size_t n) {
  std::size_t missing = 0;
  for (std::size_t i = 0; i < n; ++i) missing += IsMissing(x[i]);
  return missing > 0;
}

// As AverageTiles, for whatever x holds.
void AverageGroup(const double* x, std::size_t window, std::vector<double>& scratch, double* out) {
  const std::size_t size = kTiles * window;
  if (HasMissing(x, (kTiles + 1) * window - 1)) {
    scratch.resize(2 * size);
    AverageTiles<true>(x, window, scratch.data(), scratch.data() + size, out);
  } else {
    scratch.resize(size);
    AverageTiles<false>(x, window, scratch.data(), nullptr, out);
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

HWY_EXPORT(AverageWindows);

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
  HWY_DYNAMIC_DISPATCH(AverageWindows)(x.data(), n - 2 * half, 2 * half + 1, out.data() + half);
}

}  // namespace vela::kernel
#endif

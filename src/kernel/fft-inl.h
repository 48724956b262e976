// Fourier transforms of several lines at a time, a line to each lane of a vector.
// Compiled once for each instruction set: the guard lets it in again for the next.

#include <algorithm>
#include <cstddef>
#include <hwy/highway.h>
#include <tuple>
#include <utility>
#include <vector>

#include "kernel/fft_plan.h"

#if defined(VELA_KERNEL_FFT_TOGGLE) == defined(HWY_TARGET_TOGGLE)
#ifdef VELA_KERNEL_FFT_TOGGLE
#undef VELA_KERNEL_FFT_TOGGLE
#else
#define VELA_KERNEL_FFT_TOGGLE
#endif

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {

// The k-th element of the lines is at x + 2 * lanes * k: a vector of real parts, then one of
// imaginary parts. An inverse transform is the forward one with the two exchanged on the way in and
// on the way out.
enum class Direction { kForward, kInverse };

template <class D>
struct Parts {
  hwy::HWY_NAMESPACE::Vec<D> re, im;
};

template <Direction kDirection, class D>
HWY_INLINE Parts<D> LoadParts(D d, const double* x) {
  namespace hn = hwy::HWY_NAMESPACE;
  const auto first = hn::Load(d, x), second = hn::Load(d, x + hn::Lanes(d));
  if constexpr (kDirection == Direction::kForward) return {first, second};
  return {second, first};
}

template <Direction kDirection, class D>
HWY_INLINE void StoreParts(D d, const Parts<D>& z, double* x) {
  namespace hn = hwy::HWY_NAMESPACE;
  constexpr bool kExchange = kDirection == Direction::kInverse;
  hn::Store(kExchange ? z.im : z.re, d, x);
  hn::Store(kExchange ? z.re : z.im, d, x + hn::Lanes(d));
}

// z times the number whose parts are at factor.
template <class D>
HWY_INLINE Parts<D> Times(D d, const Parts<D>& z, const double* factor) {
  namespace hn = hwy::HWY_NAMESPACE;
  const auto re = hn::Set(d, factor[0]), im = hn::Set(d, factor[1]);
  return {hn::NegMulAdd(z.im, im, hn::Mul(z.re, re)), hn::MulAdd(z.re, im, hn::Mul(z.im, re))};
}

template <class D>
HWY_INLINE Parts<D> Plus(const Parts<D>& a, const Parts<D>& b) {
  namespace hn = hwy::HWY_NAMESPACE;
  return {hn::Add(a.re, b.re), hn::Add(a.im, b.im)};
}
template <class D>
HWY_INLINE Parts<D> Minus(const Parts<D>& a, const Parts<D>& b) {
  namespace hn = hwy::HWY_NAMESPACE;
  return {hn::Sub(a.re, b.re), hn::Sub(a.im, b.im)};
}

// a - i b and a + i b.
template <class D>
HWY_INLINE std::pair<Parts<D>, Parts<D>> QuarterTurns(const Parts<D>& a, const Parts<D>& b) {
  namespace hn = hwy::HWY_NAMESPACE;
  return {{hn::Add(a.re, b.im), hn::Sub(a.im, b.re)}, {hn::Sub(a.re, b.im), hn::Add(a.im, b.re)}};
}

// Transforms of radix elements. A radix known only at run time is odd, and kRadix is 0.
template <std::size_t kRadix, class D>
HWY_INLINE void Butterfly(D d, [[maybe_unused]] const FftPlan::Level& level, Parts<D>* z) {
  namespace hn = hwy::HWY_NAMESPACE;
  if constexpr (kRadix == 2) {
    const Parts<D> first = z[0];
    z[0] = Plus<D>(first, z[1]);
    z[1] = Minus<D>(first, z[1]);
  } else if constexpr (kRadix == 4) {
    const Parts<D> even = Plus<D>(z[0], z[2]), even_difference = Minus<D>(z[0], z[2]);
    const Parts<D> odd = Plus<D>(z[1], z[3]), odd_difference = Minus<D>(z[1], z[3]);
    z[0] = Plus<D>(even, odd);
    z[2] = Minus<D>(even, odd);
    std::tie(z[1], z[3]) = QuarterTurns<D>(even_difference, odd_difference);
  } else {
    // Elements q and radix - q meet the same cosine, and sines that differ in sign.
    constexpr std::size_t kMostPairs = (kRadix == 0 ? FftPlan::kLargestRadix : kRadix) / 2;
    const std::size_t radix = kRadix == 0 ? level.radix : kRadix;
    const std::size_t pairs = radix / 2;
    Parts<D> sums[kMostPairs], differences[kMostPairs];
    const Parts<D> first = z[0];
    for (std::size_t q = 0; q < pairs; ++q) {
      sums[q] = Plus<D>(z[q + 1], z[radix - 1 - q]);
      differences[q] = Minus<D>(z[q + 1], z[radix - 1 - q]);
      z[0] = Plus<D>(z[0], sums[q]);
    }
    for (std::size_t j = 1; j <= pairs; ++j) {
      Parts<D> even = first, odd = {hn::Zero(d), hn::Zero(d)};
      for (std::size_t q = 0; q < pairs; ++q) {
        const double* const root = &level.roots[2 * (j * (q + 1) % radix)];
        const auto cos = hn::Set(d, root[0]), sin = hn::Set(d, root[1]);
        even = {hn::MulAdd(sums[q].re, cos, even.re), hn::MulAdd(sums[q].im, cos, even.im)};
        odd = {hn::MulAdd(differences[q].re, sin, odd.re),
               hn::MulAdd(differences[q].im, sin, odd.im)};
      }
      std::tie(z[j], z[radix - j]) = QuarterTurns<D>(even, odd);
    }
  }
}

// One level of as many transforms of its size as blocks says, one after the other.
template <Direction kDirection, std::size_t kRadix, class D>
void RunButterflies(D d, const FftPlan::Level& level, double* x, std::size_t blocks) {
  namespace hn = hwy::HWY_NAMESPACE;
  constexpr std::size_t kMostElements = kRadix == 0 ? FftPlan::kLargestRadix : kRadix;
  const std::size_t radix = kRadix == 0 ? level.radix : kRadix;
  const std::size_t element = 2 * hn::Lanes(d), stride = element * level.step;
  for (std::size_t block = 0; block < blocks; ++block, x += radix * stride) {
    const double* twiddle = level.twiddles.data();
    for (std::size_t k = 0; k < level.step; ++k, twiddle += 2 * (radix - 1)) {
      double* const at = x + element * k;
      const bool twiddles = level.step > 1;
      Parts<D> z[kMostElements];
      z[0] = LoadParts<kDirection>(d, at);
      for (std::size_t j = 1; j < radix; ++j) {
        z[j] = LoadParts<kDirection>(d, at + stride * j);
        if (kDirection == Direction::kInverse && twiddles) {
          z[j] = Times(d, z[j], twiddle + 2 * (j - 1));
        }
      }
      Butterfly<kRadix>(d, level, z);
      StoreParts<kDirection>(d, z[0], at);
      for (std::size_t j = 1; j < radix; ++j) {
        if (kDirection == Direction::kForward && twiddles) {
          z[j] = Times(d, z[j], twiddle + 2 * (j - 1));
        }
        StoreParts<kDirection>(d, z[j], at + stride * j);
      }
    }
  }
}

template <Direction kDirection, class D>
void RunLevel(D d, const FftPlan::Level& level, double* x, std::size_t blocks) {
  switch (level.radix) {
    case 2:
      return RunButterflies<kDirection, 2>(d, level, x, blocks);
    case 3:
      return RunButterflies<kDirection, 3>(d, level, x, blocks);
    case 4:
      return RunButterflies<kDirection, 4>(d, level, x, blocks);
    case 5:
      return RunButterflies<kDirection, 5>(d, level, x, blocks);
    default:
      return RunButterflies<kDirection, 0>(d, level, x, blocks);
  }
}

// The levels from first on, forward, or back up to it: one transform at a time while it is larger
// than the nearest cache.
template <Direction kDirection, class D>
void RunLevels(D d, const std::vector<FftPlan::Level>& levels, std::size_t first, double* x) {
  constexpr bool kForward = kDirection == Direction::kForward;
  constexpr std::size_t kCacheSize = 24 * 1024;
  if (first == levels.size()) return;
  const std::size_t element = 2 * hwy::HWY_NAMESPACE::Lanes(d), size = levels[first].Size();
  if (size * element * sizeof(double) <= kCacheSize) {
    for (std::size_t i = first; i < levels.size(); ++i) {
      const FftPlan::Level& level = levels[kForward ? i : levels.size() - 1 - (i - first)];
      RunLevel<kDirection>(d, level, x, size / level.Size());
    }
    return;
  }
  const FftPlan::Level& level = levels[first];
  if (kForward) RunLevel<kDirection>(d, level, x, 1);
  for (std::size_t j = 0; j < level.radix; ++j) {
    RunLevels<kDirection>(d, levels, first + 1, x + j * level.step * element);
  }
  if (!kForward) RunLevel<kDirection>(d, level, x, 1);
}

// z[k] times the number whose parts are at factors + 2 * k, for each k < count.
template <Direction kLoad, Direction kStore, class D>
void MultiplyEach(D d, const double* factors, std::size_t count, double* x) {
  for (std::size_t k = 0; k < count; ++k, x += 2 * hwy::HWY_NAMESPACE::Lanes(d)) {
    StoreParts<kStore>(d, Times(d, LoadParts<kLoad>(d, x), factors + 2 * k), x);
  }
}

// Transforms plan.size elements in place; x has room for plan.WorkSize(). Forward leaves the
// frequencies at their places, and inverse takes them from there and leaves size times the values.
template <Direction kDirection, class D>
void Transform(D d, const FftPlan& plan, double* x) {
  constexpr Direction kForward = Direction::kForward, kInverse = Direction::kInverse;
  if (plan.larger == nullptr) return RunLevels<kDirection>(d, plan.levels, 0, x);
  const std::size_t element = 2 * hwy::HWY_NAMESPACE::Lanes(d), size = plan.larger->size;
  MultiplyEach<kDirection, kForward>(d, plan.chirp.data(), plan.size, x);
  std::fill(x + plan.size * element, x + size * element, 0.0);
  RunLevels<kForward>(d, plan.larger->levels, 0, x);
  MultiplyEach<kForward, kForward>(d, plan.chirp_spectrum.data(), size, x);
  RunLevels<kInverse>(d, plan.larger->levels, 0, x);
  MultiplyEach<kForward, kDirection>(d, plan.chirp.data(), plan.size, x);
}

// The plan with all that Transform needs.
inline FftPlan CompletePlan(std::size_t size) {
  FftPlan plan(size);
  if (plan.larger == nullptr) return plan;
  // The chirp to convolve with turns the other way, and is as long again before its start.
  const std::size_t larger = plan.larger->size;
  std::vector<double>& spectrum = plan.chirp_spectrum;
  spectrum.assign(2 * larger, 0.0);
  for (std::size_t k = 0; k < size; ++k) {
    for (const std::size_t at : {k, (larger - k) % larger}) {
      spectrum[2 * at] = plan.chirp[2 * k] / static_cast<double>(larger);
      spectrum[2 * at + 1] = -plan.chirp[2 * k + 1] / static_cast<double>(larger);
    }
  }
  const hwy::HWY_NAMESPACE::CappedTag<double, 1> one;
  RunLevels<Direction::kForward>(one, plan.larger->levels, 0, spectrum.data());
  return plan;
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif

#include "kernel/fft_plan.h"

#include <cmath>
#include <cstdint>
#include <numbers>
#include <utility>

namespace vela::kernel {
namespace {

// cos and sin of 2 pi k / n for k < n. The angle that is computed with is at most pi / 4, so that
// neither its rounding nor that of pi shows.
std::pair<double, double> UnitRoot(std::size_t k, std::size_t n) {
  if (2 * k > n) {
    const auto [cos, sin] = UnitRoot(n - k, n);
    return {cos, -sin};
  }
  if (4 * k > n) {  // pi minus the angle, in half units so that it stays whole
    const auto [cos, sin] = UnitRoot(n - 2 * k, 2 * n);
    return {-cos, sin};
  }
  const double turn = static_cast<double>(k) / static_cast<double>(n);
  if (8 * k > n) {
    const double rest =
        static_cast<double>(n - 4 * k) / (4 * static_cast<double>(n)) * 2 * std::numbers::pi;
    return {std::sin(rest), std::cos(rest)};
  }
  return {std::cos(2 * std::numbers::pi * turn), std::sin(2 * std::numbers::pi * turn)};
}

// Fours first, as they take the fewest operations.
std::vector<std::size_t> Radices(std::size_t n) {
  std::vector<std::size_t> radices;
  for (std::size_t radix : {4, 2, 3, 5}) {
    for (; n % radix == 0; n /= radix) radices.push_back(radix);
  }
  for (std::size_t radix = 7; n > 1 && radix <= FftPlan::kLargestRadix; radix += 2) {
    for (; n % radix == 0; n /= radix) radices.push_back(radix);
  }
  if (n > 1) radices.clear();
  return radices;
}

FftPlan::Level MakeLevel(std::size_t radix, std::size_t step) {
  FftPlan::Level level{.radix = radix, .step = step, .twiddles = {}, .roots = {}};
  const std::size_t size = level.Size();
  if (step > 1) level.twiddles.reserve(2 * (radix - 1) * step);
  for (std::size_t k = 0; step > 1 && k < step; ++k) {
    for (std::size_t j = 1; j < radix; ++j) {
      const auto [cos, sin] = UnitRoot(j * k, size);
      level.twiddles.insert(level.twiddles.end(), {cos, -sin});
    }
  }
  for (std::size_t k = 0; radix % 2 == 1 && k < radix; ++k) {
    const auto [cos, sin] = UnitRoot(k, radix);
    level.roots.insert(level.roots.end(), {cos, sin});
  }
  return level;
}

// The least size from least on that has no prime factor but two and at most two small odd ones.
std::size_t EasySize(std::size_t least) {
  std::size_t best = 0;
  for (const std::size_t odd : {1, 3, 5, 9, 15}) {
    std::size_t size = odd;
    while (size < least) size *= 2;
    if (best == 0 || size < best) best = size;
  }
  return best;
}

}  // namespace

FftPlan::FftPlan(std::size_t transform_size)
    : size(transform_size), frequencies(transform_size), places(transform_size) {
  const std::vector<std::size_t> radices = Radices(size);
  std::size_t rest = size;
  for (const std::size_t radix : radices) {
    rest /= radix;
    levels.push_back(MakeLevel(radix, rest));
  }
  for (std::size_t place = 0; place < size; ++place) {
    std::size_t frequency = radices.empty() ? place : 0, unit = 1, inside = place;
    for (const Level& level : levels) {
      frequency += inside / level.step * unit;
      inside %= level.step;
      unit *= level.radix;
    }
    frequencies[place] = frequency;
    places[frequency] = place;
  }
  if (size <= 1 || !radices.empty()) return;

  larger = std::make_unique<FftPlan>(EasySize(2 * size - 1));
  chirp.reserve(2 * size);
  for (std::uint64_t k = 0, square = 0; k < size; ++k) {
    const auto [cos, sin] = UnitRoot(square, 2 * size);  // square is k * k modulo 2 * size
    chirp.insert(chirp.end(), {cos, -sin});
    square = (square + 2 * k + 1) % (2 * size);
  }
}

}  // namespace vela::kernel

#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

/// A stream of random numbers: the xoshiro256++ generator (period 2^256 - 1), its state expanded
/// from the seed by splitmix64. Each value is drawn by additions, multiplications, divisions and
/// square roots alone, so one seed gives the same values, to the last bit, on every platform. A
/// fill draws the same values as that many single calls. Not for cryptography, not thread-safe.
class RandomSource {
 public:
  explicit RandomSource(double seed = 0) { Seed(seed); }

  /// Restarts the stream. Every double is a seed of its own, except that all NaNs are one seed and
  /// 0 and -0 another.
  void Seed(double seed);

  /// Uniform over the multiples of 2^-53 in [0, 1).
  double Uniform();

  /// Of the normal distribution with mean 0 and standard deviation 1, by a ziggurat of 256 layers.
  double Normal();

  /// Fills x with Uniform values stored by ConvertElement: in an integer type that is always 0. A
  /// float that would round to 1 is the one below.
  template <Element T>
  void FillUniform(std::span<T> x);

  /// Fills x with Normal values stored by ConvertElement.
  template <Element T>
  void FillNormal(std::span<T> x);

  /// Fills x with whole numbers below bound, each equally likely; with 0 when bound is 0.
  void FillIndices(std::span<std::uint32_t> x, std::uint32_t bound);

 private:
  std::array<std::uint64_t, 4> state_;
};

}  // namespace vela::kernel

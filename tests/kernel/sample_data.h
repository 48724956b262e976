#pragma once

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <span>
#include <vector>

#include "kernel/missing.h"

namespace vela::kernel {

using SimpleTypes = ::testing::Types<char, unsigned char, short, unsigned short, int, unsigned int,
                                     float, double, std::int64_t, std::uint64_t>;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();

/// Lengths around the vector widths and the block sizes of the kernels.
inline std::vector<std::size_t> SampleLengths() {
  return {0, 1, 2, 3, 4, 7, 8, 9, 15, 16, 17, 31, 33, 63, 64, 65, 100, 1023, 1025, 2500, 9000};
}

/// Elements from few or from all values of T.
template <class T>
std::vector<T> RandomElements(std::size_t n, bool few, std::uint64_t seed) {
  std::mt19937_64 engine(seed);
  std::vector<T> elements(n);
  for (T& element : elements) {
    const std::uint64_t bits = engine();
    if constexpr (std::floating_point<T>) {
      const double unit = static_cast<double>(bits >> 11) * 0x1p-53;
      element = static_cast<T>(few ? std::floor(unit * 9) - 4 : std::ldexp(unit - 0.5, 20));
    } else {
      element = static_cast<T>(few ? bits % 9 : bits);
    }
  }
  return elements;
}

/// Random samples of every length, and for floating types the same with special values first, last,
/// sprinkled in, or nothing else.
template <class T>
std::vector<std::vector<T>> Samples() {
  std::vector<std::vector<T>> samples;
  for (const std::size_t n : SampleLengths()) {
    for (const bool few : {false, true}) samples.push_back(RandomElements<T>(n, few, 7 * n + few));
  }
  if constexpr (std::floating_point<T>) {
    const std::size_t plain = samples.size();
    for (std::size_t k = 0; k < plain; ++k) {
      if (samples[k].empty()) continue;
      for (const double special : {kMissing, kNaN, kInf, -kInf, -0.0}) {
        const T value = static_cast<T>(special);
        std::vector<T> changed = samples[k];
        changed.front() = value;
        samples.push_back(changed);
        changed.back() = value;
        samples.push_back(changed);
        for (std::size_t i = 0; i < changed.size(); i += 1 + i % 5) changed[i] = value;
        samples.push_back(changed);
        samples.emplace_back(changed.size(), value);
      }
      std::vector<T> mixed = samples[k];
      const double specials[] = {kMissing, kNaN, kInf, -kInf, -0.0, kMissing, 0.0};
      for (std::size_t i = 0; i < mixed.size(); i += 2) {
        mixed[i] = static_cast<T>(specials[i / 2 % std::size(specials)]);
      }
      samples.push_back(mixed);
    }
  }
  return samples;
}

/// Equal, or both NaN.
template <class T>
bool Same(T a, T b) {
  return a == b || (a != a && b != b);
}

/// The sample copied to an address that no vector is aligned to.
template <class T>
class Unaligned {
 public:
  explicit Unaligned(const std::vector<T>& sample) : storage_(1) {
    storage_.insert(storage_.end(), sample.begin(), sample.end());
  }
  std::span<T> span() { return std::span<T>(storage_).subspan(1); }

 private:
  std::vector<T> storage_;
};

}  // namespace vela::kernel

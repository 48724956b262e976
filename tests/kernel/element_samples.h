#pragma once

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

#include "kernel/missing.h"

namespace vela::kernel::element_samples {

using ElementTypes = ::testing::Types<char, unsigned char, short, unsigned short, int, unsigned int,
                                      float, double, std::int64_t, std::uint64_t>;

/// Lengths below, at and above the widths of vectors and the sizes of blocks.
inline const std::vector<std::size_t>& SampleLengths() {
  static const std::vector<std::size_t> lengths = {
      0,  1,  2,   3,   4,   5,   7,   8,   9,   15,  16,  17,   31,   33,   63,
      64, 65, 127, 128, 129, 255, 256, 257, 511, 512, 513, 1000, 1023, 1025, 4099};
  return lengths;
}

/// The values of T at which arithmetic and conversion are most likely to go wrong.
template <class T>
std::vector<T> EdgeValues() {
  using Limits = std::numeric_limits<T>;
  std::vector<T> values = {T{0},
                           T{1},
                           T{2},
                           T{3},
                           T{100},
                           Limits::max(),
                           Limits::lowest(),
                           static_cast<T>(Limits::max() / 2),
                           static_cast<T>(Limits::max() / 2 + 1)};
  const auto add = [&values](auto... more) { (values.push_back(static_cast<T>(more)), ...); };
  if constexpr (std::signed_integral<T>) add(-1, -2, Limits::min() + 1);
  if constexpr (std::floating_point<T>) {
    for (const double power : {7.0, 8.0, 15.0, 16.0, 31.0, 32.0, 63.0, 64.0}) {
      const T bound = static_cast<T>(std::exp2(power));
      for (const T value :
           {std::nextafter(bound, T{0}), bound, bound + 1, bound - 1, bound - T{0.5}}) {
        add(value, -value);
      }
    }
    add(-1, 0.5, -0.5, 0.999, -0.999, 1.5, -2.7, -0.0);
    add(Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN());
    add(Limits::min(), Limits::denorm_min(), -Limits::denorm_min());
  }
  if constexpr (std::same_as<T, double>) {
    add(kMissing, -kMissing, 1e300, -1e300, 1.7e308, 1e-300, 3e9, -3e9, 1e39, 1e-46);
  }
  return values;
}

/// `size` values of T: ordinary numbers mixed with edge values.
template <class T>
std::vector<T> SampleValues(std::size_t size, unsigned seed) {
  std::mt19937 engine(seed);
  const std::vector<T> edges = EdgeValues<T>();
  std::vector<T> values(size);
  for (T& value : values) {
    const unsigned draw = engine();
    value = draw % 4 == 0 ? edges[draw / 4 % edges.size()] : static_cast<T>(draw % 120);
    if constexpr (std::floating_point<T>) {
      if (draw % 4 == 1) value = value / T{7} - T{5};
    }
  }
  return values;
}

/// Equal, or both NaN; tells 0 from -0.
template <class T>
bool SameValue(T a, T b) {
  if constexpr (std::floating_point<T>) {
    return (a == b && std::signbit(a) == std::signbit(b)) || (std::isnan(a) && std::isnan(b));
  } else {
    return a == b;
  }
}

template <class T>
void ExpectSame(const std::vector<T>& actual, const std::vector<T>& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    ASSERT_TRUE(SameValue(actual[i], expected[i]))
        << "element " << i << " of " << actual.size() << ": " << +actual[i] << ", expected "
        << +expected[i];
  }
}

}  // namespace vela::kernel::element_samples

// Elements to test kernels with.
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

#include "kernel/element_types.h"
#include "kernel/missing.h"

namespace vela::kernel {

template <class List>
struct TestTypesOf;
template <class... T>
struct TestTypesOf<TypeList<T...>> {
  using Types = ::testing::Types<T...>;
};
using ElementTypes = TestTypesOf<SimpleTypes>::Types;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();

/// Lengths below, at and above the widths of vectors and the sizes of blocks.
inline const std::vector<std::size_t>& SampleLengths() {
  static const std::vector<std::size_t> lengths = {0,   1,   2,   3,    4,    5,    7,   8,  9,
                                                   15,  16,  17,  31,   33,   63,   64,  65, 100,
                                                   127, 129, 257, 1023, 1025, 2500, 9000};
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

#include "kernel/replace.h"

#include <algorithm>
#include <cmath>

#include "kernel/round.h"
#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

template <class T>
class ReplaceTest : public ::testing::Test {};
TYPED_TEST_SUITE(ReplaceTest, ElementTypes);

// Numbers at, between and beyond the elements of every type.
std::vector<double> Bounds() {
  std::vector<double> bounds = {kNaN, kInf, -kInf, kMissing, 0.0, 60.0, 60.5, -3.25, 1e-46, -1e-46};
  for (const double power : {7.0, 8.0, 15.0, 16.0, 31.0, 32.0, 63.0, 64.0, 128.0, 1023.0}) {
    const double bound = std::exp2(power);
    for (const double value : {std::nextafter(bound, 0.0), bound - 1, bound - 0.5, bound}) {
      bounds.insert(bounds.end(), {value, -value});
    }
  }
  return bounds;
}

// Numbers of every type compare exactly in this one: it has the 64 bits of the widest integers.
template <class T>
long double Exactly(T value) {
  return static_cast<long double>(value);
}

TYPED_TEST(ReplaceTest, ComparesExactlyWithDoubles) {
  using T = TypeParam;
  const std::vector<T> sample = SampleValues<T>(600, 5);
  const auto check = [&](auto replace, auto picks) {
    std::vector<T> expected = sample, actual = sample;
    std::replace_if(expected.begin(), expected.end(), picks, T{77});
    replace(std::span(actual));
    ExpectSame(actual, expected);
  };
  for (const double bound : Bounds()) {
    check([&](std::span<T> x) { ReplaceGreater(x, bound, T{77}); },
          [&](T value) { return Exactly(value) > Exactly(bound); });
    check([&](std::span<T> x) { ReplaceLess(x, bound, T{77}); },
          [&](T value) { return Exactly(value) < Exactly(bound); });
    for (const double high : {bound, 50.0, kInf, kNaN}) {
      for (const bool outside : {false, true}) {
        const auto picks = [&](T value) {
          const bool inside = Exactly(value) >= Exactly(bound) && Exactly(value) <= Exactly(high);
          return value == value && !IsMissing(value) && inside != outside;
        };
        check(
            [&](std::span<T> x) {
              EXPECT_EQ(ReplaceInRange(x, bound, high, T{77}, outside),
                        std::ranges::count_if(sample, picks));
            },
            picks);
      }
    }
  }
  check([](std::span<T> x) { ReplaceNan(x, T{77}); }, [](T value) { return value != value; });
}

// std::round of some libraries takes 0.49999999999999994 to 1.
template <class T>
T Nearest(T value) {
  const T whole = std::trunc(value);
  return std::fabs(value - whole) < T{0.5} || std::isinf(value)
             ? whole
             : whole + std::copysign(T{1}, value);
}

template <class T>
void ExpectRounded() {
  std::vector<T> x = SampleValues<T>(2000, 6);
  for (const double value : {0.49999999999999994, 0.5, -0.5, 2.5, -2.5, 0x1.0p52 + 1, 0x1.8p51,
                             0x1.fffffffffffffp51, 8388609.0, -0.3, -0.0, 1e300}) {
    x.push_back(static_cast<T>(value));
  }
  const struct {
    Rounding rounding;
    T (*of)(T);
  } cases[] = {{Rounding::kCeil, [](T v) { return std::ceil(v); }},
               {Rounding::kFloor, [](T v) { return std::floor(v); }},
               {Rounding::kFix, [](T v) { return std::trunc(v); }},
               {Rounding::kRound, Nearest<T>}};
  for (const auto& [rounding, of] : cases) {
    std::vector<T> expected, apart(x.size()), same = x;
    for (const T value : x) expected.push_back(IsMissing(value) ? value : of(value));
    RoundElements<T>(x, rounding, apart);
    ExpectSame(apart, expected);
    RoundElements<T>(same, rounding, same);
    ExpectSame(same, expected);
  }
}

TEST(RoundTest, RoundsAsTheLibraryButKeepsMissing) {
  ExpectRounded<double>();
  ExpectRounded<float>();
}

}  // namespace
}  // namespace vela::kernel

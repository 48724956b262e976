// The arithmetic of the number types, one function object per operator.
#pragma once

#include <concepts>
#include <type_traits>

#include "frame/interface/complex.h"
#include "frame/interface/missing_value.h"

namespace tesselc {

// Signed overflow wraps: the work is done in the unsigned type of the same width.
template <class T>
struct WrappingOf {
  using type = T;
};
template <std::signed_integral T>
struct WrappingOf<T> {
  using type = std::make_unsigned_t<T>;
};
template <class T>
using Wrapping = typename WrappingOf<T>::type;

// Doubles carry the missing value on.
inline bool IsMissing(double value) { return value == kMissingValue; }
template <class T>
bool AnyMissing([[maybe_unused]] const T& a, [[maybe_unused]] const T& b) {
  if constexpr (std::is_same_v<T, double>) {
    return IsMissing(a) || IsMissing(b);
  } else if constexpr (std::is_same_v<T, OneTCcomplex>) {
    return IsMissing(a.m_re) || IsMissing(a.m_im) || IsMissing(b.m_re) || IsMissing(b.m_im);
  } else {
    return false;
  }
}

template <class T, class F>
T Calculate(T a, T b, F&& f) {
  if constexpr (std::is_same_v<T, double>) {
    if (AnyMissing(a, b)) [[unlikely]]
      return kMissingValue;
  }
  using W = Wrapping<T>;
  return static_cast<T>(f(static_cast<W>(a), static_cast<W>(b)));
}

struct AddOp {
  template <class T>
  static T Apply(T a, T b) {
    return Calculate(a, b, [](auto x, auto y) { return x + y; });
  }
};
struct SubtractOp {
  template <class T>
  static T Apply(T a, T b) {
    return Calculate(a, b, [](auto x, auto y) { return x - y; });
  }
};
struct MultiplyOp {
  template <class T>
  static T Apply(T a, T b) {
    return Calculate(a, b, [](auto x, auto y) { return x * y; });
  }
};

// Between numbers. What is missing has no place in an order.
struct LessOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a < b && !AnyMissing(a, b);
  }
};
struct LessEqualOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a <= b && !AnyMissing(a, b);
  }
};
struct GreaterOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a > b && !AnyMissing(a, b);
  }
};
struct GreaterEqualOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a >= b && !AnyMissing(a, b);
  }
};
struct EqualOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a == b;
  }
};
struct NotEqualOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return !(a == b);
  }
};

}  // namespace tesselc

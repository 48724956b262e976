// The arithmetic of the number types, one function object per operator.
#pragma once

#include <concepts>
#include <type_traits>

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

struct AddOp {
  template <class T>
  static T Apply(T a, T b) {
    using W = Wrapping<T>;
    return static_cast<T>(static_cast<W>(a) + static_cast<W>(b));
  }
};
struct SubtractOp {
  template <class T>
  static T Apply(T a, T b) {
    using W = Wrapping<T>;
    return static_cast<T>(static_cast<W>(a) - static_cast<W>(b));
  }
};
struct MultiplyOp {
  template <class T>
  static T Apply(T a, T b) {
    using W = Wrapping<T>;
    return static_cast<T>(static_cast<W>(a) * static_cast<W>(b));
  }
};

// Between numbers.
struct LessOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a < b;
  }
};
struct LessEqualOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a <= b;
  }
};
struct GreaterOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a > b;
  }
};
struct GreaterEqualOp {
  template <class T>
  static bool Apply(const T& a, const T& b) {
    return a >= b;
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

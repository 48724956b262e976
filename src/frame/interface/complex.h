// The complex value that every complex-typed object and container stores.
#pragma once

#include <cmath>

#include "frame/interface/export.h"
#include "frame/interface/point.h"
#include "platform/types.h"

class CStringUTF8;

// Two doubles, real part first, no padding. Either part may be the missing value on its own; the
// arithmetic treats it as the number it is, callers test for it first.
class OneTCcomplex {
 public:
  double m_re = 0;
  double m_im = 0;

  constexpr OneTCcomplex() = default;
  constexpr OneTCcomplex(double re, double im = 0) : m_re(re), m_im(im) {}

  constexpr OneTCcomplex operator+(const OneTCcomplex& b) const {
    return {m_re + b.m_re, m_im + b.m_im};
  }
  constexpr OneTCcomplex operator-(const OneTCcomplex& b) const {
    return {m_re - b.m_re, m_im - b.m_im};
  }
  constexpr OneTCcomplex operator*(const OneTCcomplex& b) const {
    return {m_re * b.m_re - m_im * b.m_im, m_re * b.m_im + m_im * b.m_re};
  }
  constexpr OneTCcomplex operator-() const { return {-m_re, -m_im}; }
  constexpr OneTCcomplex& operator+=(const OneTCcomplex& b) { return *this = *this + b; }

  // Scaled division: no overflow on the way for representable quotients. Division by zero gives
  // the infinities and NaNs of the parts' divisions.
  VELAHOST_API OneTCcomplex operator/(const OneTCcomplex& b) const;
  // Principal value of this to the power b; 0 ^ 0 is 1, 0 ^ b is 0 for a positive real part of b.
  // Small integer exponents are exact products.
  VELAHOST_API OneTCcomplex operator^(const OneTCcomplex& b) const;
  // Both parts divided by n.
  VELAHOST_API OneTCcomplex& operator/=(int n);

  // Equality of both parts. The order is by modulus, then by phase, so that it is total over
  // values without NaN.
  VELAHOST_API int operator==(const OneTCcomplex& b) const;
  VELAHOST_API int operator!=(const OneTCcomplex& b) const;
  VELAHOST_API int operator<(const OneTCcomplex& b) const;
  VELAHOST_API int operator<=(const OneTCcomplex& b) const;
  VELAHOST_API int operator>(const OneTCcomplex& b) const;
  VELAHOST_API int operator>=(const OneTCcomplex& b) const;

  // Modulus, without overflow on the way.
  VELAHOST_API double GetAmplitude() const;

  // Text form: "%f" when the imaginary part is exactly 0, "%fi" when the real part is, "NANUM" when
  // either part is missing, else both with the sign of the imaginary part between. Returns 1.
  VELAHOST_API int Get(CStringUTF8& text) const;

  // The two parts as coordinates; the integer point truncates toward zero and saturates, the third
  // coordinate is 0.
  VELAHOST_API operator PointInt() const;
  VELAHOST_API operator PointDouble() const;
  VELAHOST_API operator Point3D() const;

  // An automation array of two doubles. The caller clears variant before and frees it afterwards.
  // Returns 1, or 0 when the array cannot be made.
  VELAHOST_API int GetVariant(VARIANT& variant) const;
};

static_assert(sizeof(OneTCcomplex) == 2 * sizeof(double));

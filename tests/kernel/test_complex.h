// A complex element of the tests' own.
#pragma once

#include <cmath>
#include <tuple>

#include "kernel/missing.h"

namespace vela::kernel {

struct TestComplex {
  double m_re = 0, m_im = 0;

  TestComplex(double re = 0, double im = 0) : m_re(re), m_im(im) {}
  double GetAmplitude() const { return std::hypot(m_re, m_im); }
  TestComplex& operator+=(const TestComplex& b) {
    return *this = TestComplex(m_re + b.m_re, m_im + b.m_im);
  }
  int operator<(const TestComplex& b) const { return GetAmplitude() < b.GetAmplitude(); }
};

template <>
inline constexpr auto kElementParts<TestComplex> = std::tuple(&TestComplex::m_re,
                                                              &TestComplex::m_im);

}  // namespace vela::kernel

#include "frame/interface/complex.h"

#include <cmath>
#include <compare>
#include <complex>
#include <limits>

#include "frame/interface/automation_values.h"
#include "frame/interface/missing_value.h"
#include "frame/interface/status.h"
#include "frame/interface/string_utf8.h"
#include "host/number_text.h"
#include "host/saturate.h"
#include "platform/automation.h"

using vela::host::kFixedTextSize;
using vela::host::Saturate;
using vela::host::WriteFixed;

namespace {

std::complex<double> ToStd(const OneTCcomplex& z) { return {z.m_re, z.m_im}; }
OneTCcomplex FromStd(const std::complex<double>& z) { return {z.real(), z.imag()}; }

bool IsZero(const OneTCcomplex& z) { return z.m_re == 0 && z.m_im == 0; }
bool IsMissing(const OneTCcomplex& z) { return z.m_re == kMissingValue || z.m_im == kMissingValue; }

// By modulus, then by phase; equal moduli and phases of different values, which rounding can give,
// are told apart by the parts. Adding 0 turns -0 into 0, which it is equal to.
std::partial_ordering Order(const OneTCcomplex& a, const OneTCcomplex& b) {
  if (a == b) return std::partial_ordering::equivalent;
  if (const auto order = a.GetAmplitude() <=> b.GetAmplitude(); order != 0) return order;
  const auto phase = [](const OneTCcomplex& z) { return std::atan2(z.m_im + 0.0, z.m_re + 0.0); };
  if (const auto order = phase(a) <=> phase(b); order != 0) return order;
  if (const auto order = a.m_re <=> b.m_re; order != 0) return order;
  return a.m_im <=> b.m_im;
}

// Exponents up to this are products; beyond, the rounding of so many products would exceed that of
// the polar form.
constexpr double kLargestProductExponent = 64;

OneTCcomplex PowerByProducts(OneTCcomplex base, unsigned exponent) {
  OneTCcomplex result = 1;
  while (true) {
    if (exponent & 1) result = result * base;
    exponent >>= 1;
    if (exponent == 0) return result;
    base = base * base;
  }
}

OneTCcomplex PolarPower(const OneTCcomplex& base, const OneTCcomplex& exponent) {
  const double modulus = base.GetAmplitude();
  const double phase = std::atan2(base.m_im, base.m_re);
  const double log_modulus = std::log(modulus);
  // A real exponent needs no round trip through the logarithm.
  const double result_modulus = exponent.m_im == 0
                                    ? std::pow(modulus, exponent.m_re)
                                    : std::exp(exponent.m_re * log_modulus - exponent.m_im * phase);
  const double result_phase = exponent.m_im * log_modulus + exponent.m_re * phase;
  return {result_modulus * std::cos(result_phase), result_modulus * std::sin(result_phase)};
}

OneTCcomplex PowerOfZero(const OneTCcomplex& exponent) {
  if (IsZero(exponent)) return 1;
  if (exponent.m_re > 0) return 0;
  if (exponent.m_re < 0 && exponent.m_im == 0) return std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  return {nan, nan};
}

bool IsSmallInteger(double x) {
  return std::abs(x) <= kLargestProductExponent && x == std::trunc(x);
}

OneTCcomplex RealPower(const OneTCcomplex& base, double exponent) {
  if (base.m_im == 0 && (base.m_re > 0 || exponent == std::trunc(exponent))) {
    return std::pow(base.m_re, exponent);
  }
  if (IsSmallInteger(exponent)) {
    const OneTCcomplex power = PowerByProducts(base, static_cast<unsigned>(std::abs(exponent)));
    return exponent < 0 ? OneTCcomplex(1) / power : power;
  }
  // Exact where the polar form leaves a rounding error in a part that is zero.
  if (exponent == 0.5) return FromStd(std::sqrt(ToStd(base)));
  return PolarPower(base, exponent);
}

}  // namespace

OneTCcomplex OneTCcomplex::operator/(const OneTCcomplex& b) const {
  if (b.m_im == 0) return {m_re / b.m_re, m_im / b.m_re};
  return FromStd(ToStd(*this) / ToStd(b));
}

OneTCcomplex OneTCcomplex::operator^(const OneTCcomplex& b) const {
  if (IsZero(*this)) return PowerOfZero(b);
  return b.m_im == 0 ? RealPower(*this, b.m_re) : PolarPower(*this, b);
}

OneTCcomplex& OneTCcomplex::operator/=(int n) {
  m_re /= n;
  m_im /= n;
  return *this;
}

int OneTCcomplex::operator==(const OneTCcomplex& b) const {
  return m_re == b.m_re && m_im == b.m_im;
}
int OneTCcomplex::operator!=(const OneTCcomplex& b) const { return !(*this == b); }
int OneTCcomplex::operator<(const OneTCcomplex& b) const { return Order(*this, b) < 0; }
int OneTCcomplex::operator<=(const OneTCcomplex& b) const { return Order(*this, b) <= 0; }
int OneTCcomplex::operator>(const OneTCcomplex& b) const { return Order(*this, b) > 0; }
int OneTCcomplex::operator>=(const OneTCcomplex& b) const { return Order(*this, b) >= 0; }

double OneTCcomplex::GetAmplitude() const { return std::hypot(m_re, m_im); }

int OneTCcomplex::Get(CStringUTF8& text) const {
  char buffer[2 * kFixedTextSize + 2];
  char* end = buffer;
  if (m_im == 0) {
    end = WriteFixed(m_re, end);
  } else if (m_re != 0 && IsMissing(*this)) {
    text = kMissingText;
    return 1;
  } else {
    if (m_re != 0) {
      end = WriteFixed(m_re, end);
      if (!(m_im < 0)) *end++ = '+';
    }
    end = WriteFixed(m_im, end);
    *end++ = 'i';
  }
  text = std::string_view(buffer, static_cast<std::size_t>(end - buffer));
  return 1;
}

OneTCcomplex::operator PointInt() const {
  return {Saturate<std::int32_t>(m_re), Saturate<std::int32_t>(m_im)};
}
OneTCcomplex::operator PointDouble() const { return {m_re, m_im}; }
OneTCcomplex::operator Point3D() const { return {m_re, m_im, 0}; }

int OneTCcomplex::GetVariant(VARIANT& variant) const {
  const double parts[] = {m_re, m_im};
  return VariantOfParts(parts, variant) == status::kOk;
}

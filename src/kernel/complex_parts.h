#pragma once

#include <cmath>
#include <concepts>
#include <cstddef>
#include <span>

#include "kernel/missing.h"

namespace vela::kernel {

/// A complex value: two doubles m_re and m_im, with its arithmetic, modulus and order.
template <class Z>
concept Complex = requires(Z z) {
  { z.m_re } -> std::same_as<double&>;
  { z.m_im } -> std::same_as<double&>;
};

/// The modulus; missing for a missing value.
template <Complex Z>
double Amplitude(const Z& z) {
  return IsMissing(z) ? kMissing : z.GetAmplitude();
}

/// The phase in (-pi, pi]: an imaginary part of -0 counts as 0. Missing for a missing value.
template <Complex Z>
double Phase(const Z& z) {
  return IsMissing(z) ? kMissing : std::atan2(z.m_im + 0.0, z.m_re);
}

// One result for each element; the spans have one size and do not overlap. No allocation.

/// The parts as they stand, missing ones included.
template <Complex Z>
void RealParts(std::span<const Z> z, std::span<double> out) {
  for (std::size_t i = 0; i < z.size(); ++i) out[i] = z[i].m_re;
}
template <Complex Z>
void ImaginaryParts(std::span<const Z> z, std::span<double> out) {
  for (std::size_t i = 0; i < z.size(); ++i) out[i] = z[i].m_im;
}

template <Complex Z>
void Amplitudes(std::span<const Z> z, std::span<double> out) {
  for (std::size_t i = 0; i < z.size(); ++i) out[i] = Amplitude(z[i]);
}
template <Complex Z>
void Phases(std::span<const Z> z, std::span<double> out) {
  for (std::size_t i = 0; i < z.size(); ++i) out[i] = Phase(z[i]);
}

/// Negates the imaginary parts; a missing one stays missing.
template <Complex Z>
void Conjugate(std::span<Z> z) {
  for (Z& value : z) value.m_im = IsMissing(value.m_im) ? value.m_im : -value.m_im;
}

/// z[i] = re[i] + im[i] i.
template <Complex Z>
void CombineParts(std::span<const double> re, std::span<const double> im, std::span<Z> z) {
  for (std::size_t i = 0; i < z.size(); ++i) z[i] = Z{re[i], im[i]};
}

/// The sum of the elements that are not missing, 0 without any.
template <Complex Z>
Z Sum(std::span<const Z> z) {
  Z total;
  for (const Z& value : z) {
    if (!IsMissing(value)) total += value;
  }
  return total;
}

/// The product of the elements, or of those that are not missing; missing when none was used.
template <Complex Z>
Z Product(std::span<const Z> z, bool skip_missing) {
  Z product(1);
  bool used = false;
  for (const Z& value : z) {
    if (skip_missing && IsMissing(value)) continue;
    product = product * value;
    used = true;
  }
  return used ? product : Z(kMissing, kMissing);
}

/// out[i] = z[i + 1] - z[i]; out may start where z starts.
template <Complex Z>
void Difference(std::span<const Z> z, std::span<Z> out) {
  for (std::size_t i = 0; i < out.size(); ++i) out[i] = z[i + 1] - z[i];
}

}  // namespace vela::kernel

#pragma once

#include <complex>
#include <cstdint>
#include <optional>

#include "kernel/matrix_span.h"

namespace vela::kernel {

enum class PassBand { kLow, kHigh, kBand, kStop };

/// A filter that keeps or removes frequencies by their distance from zero, without shifting phases.
/// Distances and cut-offs are in units of the Nyquist frequency, half a cycle per element.
struct FrequencyFilter {
  PassBand band = PassBand::kLow;
  bool gaussian = false;  ///< otherwise Butterworth of the order, ideal for order 0
  double cutoff = 0;      ///< the lower edge of a band
  int order = 0;
  double cutoff2 = 0;  ///< the upper edge of a band, else unused
};

/// The filter of a type: low byte 0 low-pass, 1 high-pass, 2 band-pass, 3 band-stop; 0x100 makes it
/// Gaussian, whatever the order. Nothing for another bit or low byte, a cut-off outside (0, 1] or
/// NaN, a negative order, or a band that does not have cutoff < cutoff2.
std::optional<FrequencyFilter> MakeFrequencyFilter(std::uint32_t filter_type, double cutoff,
                                                   int order, double cutoff2);

/// What the filter multiplies a frequency at that distance r from zero with. With
///   L(r, c) = exp(-r^2 / (2 c^2))          Gaussian
///           = 1 / (1 + (r / c)^(2 order))  Butterworth: a half at the cut-off
///           = 1 for r <= c, else 0         ideal; r within 1e-12 of c counts as c
/// a low-pass is L(r, cutoff), a high-pass 1 - L(r, cutoff), a band-pass
/// L(r, cutoff2) * (1 - L(r, cutoff)) and a band-stop 1 less the band-pass.
double Response(const FrequencyFilter& filter, double radius);

/// Filters a matrix in place as one period of a periodic one: each of its frequencies, fy cycles
/// per row and fx per column with both in [-1/2, 1/2], is multiplied by the response at 2 sqrt(fy^2
/// + fx^2). The relative error is a few 1e-16 times the logarithm of the size. A NaN or an infinity
/// makes every element NaN or infinite. Any size, in n log n time; sizes without large prime
/// factors are several times faster. Scratch: some 16 rows or columns, and for complex values two
/// matrices of doubles. Throws std::bad_alloc before it writes anything.
void FilterFrequencies(MatrixSpan<double> x, const FrequencyFilter& filter);
void FilterFrequencies(MatrixSpan<std::complex<double>> x, const FrequencyFilter& filter);

}  // namespace vela::kernel

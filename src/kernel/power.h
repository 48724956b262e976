#pragma once

#include <span>

namespace vela::kernel {

// With AVX2 or AVX-512 the error of a power is below 0.6 units in the last place where the result
// lies between 1e-26 and 1e26, and below 1 everywhere; elsewhere it is that of the C library's pow.
// A pair of operands gives the same result in every function here and at every position. Where
// spans are given they are of one size, and result may be the same storage as x or y. Nothing
// allocates.

/// result[i] = x[i] to the power y[i], as IEEE pow has it; the missing value is just a number here.
void Power(std::span<const double> x, std::span<const double> y, std::span<double> result);

/// The same, but missing when x or y is missing or NaN, and where the power is not finite: a
/// negative x with a y that is not whole, 0 to a negative power, overflow, and infinite powers of
/// infinite operands. Underflow gives 0.
void CheckedPower(std::span<const double> x, std::span<const double> y, std::span<double> result);

/// The same for one pair, except that a NaN operand is as in IEEE pow.
double CheckedPower(double x, double y);

}  // namespace vela::kernel

#include "tesselc/run/mathematics.h"

#include <cmath>

namespace tesselc {
namespace {

// Lambert's continued fraction x / (1 + x^2 / (3 + x^2 / (5 + ...))); its first term is added with
// the rounding error of that sum.
double TanhNearZero(double x) {
  const double square = x * x;
  double rest = 0;
  for (int k = 19; k >= 3; k -= 2) rest = square / (k + rest);
  const double divisor = 1 + rest;
  const double quotient = x / divisor;
  return quotient - quotient * (rest - (divisor - 1)) / divisor;
}

}  // namespace

double Log10(double x) {
#ifdef _WIN32
  return std::log10(x);
#else
  return static_cast<double>(std::log10(static_cast<long double>(x)));
#endif
}

double Tanh(double x) {
  if (std::isnan(x) || x == 0) return x;
  const double magnitude = std::fabs(x);
  if (magnitude < 0.7) return TanhNearZero(x);
  const double tanh = 1 - 2 / (std::exp(2 * magnitude) + 1);
  return std::copysign(tanh, x);
}

}  // namespace tesselc

#include "kernel/correlation_plan.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

namespace vela::kernel {
namespace {

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// All values are whole multiples of some power of two; returns the largest such power, 0 where
// there is a value that is not finite.
double CommonUnit(std::span<const double> values) {
  double unit = std::numeric_limits<double>::infinity();
  for (const double value : values) {
    if (!std::isfinite(value)) return 0.0;
    if (value == 0.0) continue;
    int exponent;
    const double fraction = std::frexp(value, &exponent);
    const auto digits = static_cast<long long>(std::ldexp(fraction, 53));
    unit = std::min(unit, std::ldexp(static_cast<double>(digits & -digits), exponent - 53));
  }
  return std::isinf(unit) ? 1.0 : unit;
}

double Magnitude(std::span<const double> values) {
  double sum = 0.0;
  for (const double value : values) sum += std::fabs(value);
  return sum;
}

// Whether sums of multiples of `unit` that stay below `bound` are exact, with a factor of two for
// the rounding of the bound itself.
bool IsExact(double bound, double unit) { return bound <= unit * 0x1p52; }

struct Factors {
  std::vector<double> column, row;
};

// The column and the row through kernel(r, c), which is not 0, scaled so that their product is the
// kernel, if it is one of such.
Factors FactorsThrough(MatrixSpan<const double> kernel, std::size_t r, std::size_t c) {
  Factors factors;
  for (std::size_t i = 0; i < kernel.rows; ++i) {
    factors.column.push_back(kernel(i, c));
    factors.row.push_back(kernel(r, i) / kernel(r, c));
  }
  return factors;
}

// Whether column times row is the kernel, to within a few rounding errors in each weight.
bool Gives(const Factors& factors, MatrixSpan<const double> kernel, double tolerance) {
  for (std::size_t i = 0; i < kernel.rows; ++i) {
    for (std::size_t j = 0; j < kernel.cols; ++j) {
      const double weight = kernel(i, j), product = factors.column[i] * factors.row[j];
      if (!(std::fabs(product - weight) <= tolerance * std::fabs(weight))) return false;
      if ((product == 0.0) != (weight == 0.0)) return false;  // underflow
    }
  }
  return true;
}

}  // namespace

CorrelationPlan::CorrelationPlan(MatrixSpan<const double> weights, bool normalise, bool whole,
                                 double largest)
    : kernel(weights.data), side(weights.rows), divisor(1.0) {
  const std::span<const double> values = weights.Values();
  if (normalise) {
    double sum = 0.0;
    for (const double value : values) sum += value;
    if (sum != 0.0) divisor = sum;
  }

  const double magnitude = Magnitude(values);
  const double unit = CommonUnit(values);
  exact = whole && IsExact(magnitude * largest, unit);
  uncertainty = (static_cast<double>(values.size()) + 16) * 2 * kEpsilon * magnitude * largest /
                std::fabs(divisor);

  if (side == 1 || unit == 0.0 || magnitude == 0.0) return;
  const auto less = [](double a, double b) { return std::fabs(a) < std::fabs(b); };
  std::size_t largest_at = 0, smallest_at = 0;
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (less(values[largest_at], values[k])) largest_at = k;
    if (values[smallest_at] == 0.0 || (values[k] != 0.0 && less(values[k], values[smallest_at]))) {
      smallest_at = k;
    }
  }
  // Factors of whole-number kernels are whole numbers more often with the smallest weight.
  const auto through = [&](std::size_t k) { return FactorsThrough(weights, k / side, k % side); };
  Factors factors = through(smallest_at);
  const auto sums_exactly = [&] {
    return Gives(factors, weights, 0.0) &&
           IsExact(Magnitude(factors.column) * Magnitude(factors.row) * largest,
                   CommonUnit(factors.column) * CommonUnit(factors.row));
  };
  if (!(exact && sums_exactly())) {
    factors = through(largest_at);
    if (!Gives(factors, weights, 8 * kEpsilon)) return;
    exact = exact && sums_exactly();
  }
  column = std::move(factors.column);
  row = std::move(factors.row);
}

}  // namespace vela::kernel

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

// Whether sums in S of multiples of `unit` that stay below `bound` are exact, with a factor of two
// for the rounding of the bound itself.
template <class S>
bool IsExact(double bound, double unit) {
  return bound * std::numeric_limits<S>::epsilon() <= unit;
}

// Far from where floats end, so that neither what is below the least of them counts nor sums or
// products of two factors overflow.
bool FitsFloats(double magnitude) { return magnitude >= 0x1p-60 && magnitude <= 0x1p40; }

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
    : kernel(weights.Size() + kSlack), side(weights.rows), divisor(1.0) {
  std::ranges::copy(weights.Values(), kernel.begin());
  const std::span<const double> values = weights.Values();
  if (normalise) {
    double sum = 0.0;
    for (const double value : values) sum += value;
    if (sum != 0.0) divisor = sum;
  }

  const double magnitude = Magnitude(values);
  const double unit = CommonUnit(values);
  exact = whole && IsExact<double>(magnitude * largest, unit);
  exact_in_floats = whole && IsExact<float>(magnitude * largest, unit) && divisor == 1.0;
  Factor(weights, unit, largest);

  const auto count = static_cast<double>(values.size());
  const double bound = magnitude * largest / std::fabs(divisor);
  uncertainty = (count + 16) * 2 * kEpsilon * bound;
  const double steps = row.empty() ? count : static_cast<double>(2 * side);
  constexpr double kHalfUlp = std::numeric_limits<float>::epsilon() / 2;
  uncertainty_in_floats = (steps + 16) * kHalfUlp * bound;
  const bool has_factors = !row.empty();
  if (!FitsFloats(magnitude) ||
      (has_factors && !(FitsFloats(Magnitude(row)) && FitsFloats(Magnitude(column))))) {
    exact_in_floats = false;
    uncertainty_in_floats = std::numeric_limits<double>::infinity();
  }
}

// Finds the column and the row.
void CorrelationPlan::Factor(MatrixSpan<const double> weights, double unit, double largest) {
  constexpr std::size_t kSmallSide = 4;
  if (side <= kSmallSide || unit == 0.0) return;
  const std::span<const double> values = weights.Values();
  const auto less = [](double a, double b) { return std::fabs(a) < std::fabs(b); };
  std::size_t largest_at = 0, smallest_at = 0;
  for (std::size_t k = 0; k < values.size(); ++k) {
    if (less(values[largest_at], values[k])) largest_at = k;
    if (values[smallest_at] == 0.0 || (values[k] != 0.0 && less(values[k], values[smallest_at]))) {
      smallest_at = k;
    }
  }
  if (values[largest_at] == 0.0) return;
  // Factors of whole-number kernels are whole numbers more often with the smallest weight.
  const auto through = [&](std::size_t k) { return FactorsThrough(weights, k / side, k % side); };
  Factors factors = through(smallest_at);
  const auto sums_exactly = [&]<class S>(S /*type*/) {
    return Gives(factors, weights, 0.0) &&
           IsExact<S>(Magnitude(factors.column) * Magnitude(factors.row) * largest,
                      CommonUnit(factors.column) * CommonUnit(factors.row));
  };
  if (!(exact && sums_exactly(double()))) {
    factors = through(largest_at);
    if (!Gives(factors, weights, 8 * kEpsilon)) return;
    exact = exact && sums_exactly(double());
  }
  exact_in_floats = exact_in_floats && sums_exactly(float());
  column = std::move(factors.column);
  row = std::move(factors.row);
}

}  // namespace vela::kernel

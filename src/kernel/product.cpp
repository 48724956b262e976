#include "kernel/product.h"

#include <cmath>

#include "kernel/missing.h"

namespace vela::kernel {
namespace {

// A little below the largest double, so that the quotient's rounding cannot let an overflow pass.
constexpr double kLargestProduct = 1.7e308;

bool WouldOverflow(double x, double y) {
  return std::fabs(x) >= 1.0 && std::fabs(kLargestProduct / x) <= std::fabs(y);
}

}  // namespace

template <Element T>
ProductResult Product(std::span<const T> x, bool skip_missing, bool guard_overflow) {
  double product = 1.0;
  std::size_t used = 0;
  bool overflowed = false;
  for (const T element : x) {
    if (skip_missing && IsMissing(element)) continue;
    const double factor = static_cast<double>(element);
    overflowed = overflowed || (guard_overflow && WouldOverflow(product, factor));
    product *= factor;
    ++used;
  }
  return {used == 0 || overflowed ? kMissing : product, used};
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template ProductResult Product<T>(std::span<const T>, bool, bool);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

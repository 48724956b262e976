#pragma once

#include <cstddef>
#include <span>

#include "kernel/element_types.h"

namespace vela::kernel {

struct ProductResult {
  double value;      ///< the product, the missing value when no element was used
  std::size_t used;  ///< how many elements were multiplied
};

/// The product of the elements as doubles, left to right, so that it overflows where a script's own
/// loop would. Missing elements are left out with skip_missing, else multiplied as the number they
/// are; a NaN makes the product NaN. With guard_overflow a step whose result would exceed about
/// 1.7e308 makes the product missing, and so it stays. One pass, no allocation.
template <Element T>
ProductResult Product(std::span<const T> x, bool skip_missing, bool guard_overflow);

}  // namespace vela::kernel

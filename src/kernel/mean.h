#pragma once

#include <span>

#include "kernel/element_types.h"
#include "kernel/missing.h"
#include "kernel/sum.h"

namespace vela::kernel {

/// Sum(x), which see for its accuracy, by the number of elements that are not missing; missing when
/// there are none. NaN counts. Infinite where the sum is, though the mean itself were not.
template <Element T>
double Mean(std::span<const T> x) {
  const PresentSum present = SumPresent(x);
  return present.count == 0 ? kMissing : present.sum / static_cast<double>(present.count);
}

}  // namespace vela::kernel

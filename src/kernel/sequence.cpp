#include "kernel/sequence.h"

#include <cmath>
#include <limits>

#include "kernel/convert.h"

namespace vela::kernel {

namespace {

// In steps: what rounding may take away from a sequence that is meant to end on its end point.
constexpr double kTolerance = 1e-10;

}  // namespace

std::optional<std::int32_t> SequenceCount(double from, double to, double increment) {
  const double steps = (to - from) / increment;
  if (increment == 0 || std::isnan(steps)) return std::nullopt;
  const double count = std::floor(steps + kTolerance) + 1;
  if (count > std::numeric_limits<std::int32_t>::max()) return std::nullopt;
  return count < 0 ? 0 : static_cast<std::int32_t>(count);
}

double SequenceLast(double from, double to, double increment, std::int32_t count) {
  const double index = count - 1;
  const bool reaches_end = std::abs((to - from) / increment - index) <= kTolerance;
  return reaches_end ? to : from + index * increment;
}

template <Element T>
void FillSequence(std::span<T> x, double from, double increment, double last) {
  if (x.empty()) return;
  T* const data = x.data();
  // A 32-bit index converts to double in vector code, a 64-bit one does not.
  const auto end = static_cast<std::int32_t>(x.size() - 1);
  for (std::int32_t i = 0; i < end; ++i) data[i] = ConvertElement<T>(from + i * increment);
  data[end] = ConvertElement<T>(last);
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template void FillSequence(std::span<T>, double from, double increment, double last);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

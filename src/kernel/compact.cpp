#include "kernel/compact.h"

#include <algorithm>
#include <concepts>

#include "kernel/missing.h"

namespace vela::kernel {

template <Element T>
std::size_t CountLeadingMissing(std::span<const T> x) {
  return static_cast<std::size_t>(std::find_if_not(x.begin(), x.end(), IsMissing<T>) - x.begin());
}

template <Element T>
std::size_t CountTrailingMissing(std::span<const T> x) {
  return static_cast<std::size_t>(std::find_if_not(x.rbegin(), x.rend(), IsMissing<T>) -
                                  x.rbegin());
}

template <Element T>
std::size_t RemoveMissing(std::span<T> x) {
  if constexpr (!std::same_as<T, double>) {
    return x.size();
  } else {
    // Storing every value and stepping over it only when it is kept costs no branch.
    std::size_t kept = 0;
    for (const T value : x) {
      x[kept] = value;
      kept += IsMissing(value) ? 0 : 1;
    }
    return kept;
  }
}

#define VELA_KERNEL_INSTANTIATE(T)                               \
  template std::size_t CountLeadingMissing(std::span<const T>);  \
  template std::size_t CountTrailingMissing(std::span<const T>); \
  template std::size_t RemoveMissing(std::span<T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

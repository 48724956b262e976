#pragma once

#include <atomic>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace vela::kernel {

/// The instruction sets that kernels are compiled for, each with all that the ones before it have.
/// The first is the floor below which nothing runs.
enum class InstructionSet { kSse4, kAvx2, kAvx512 };

inline constexpr InstructionSet kAllInstructionSets[] = {
    InstructionSet::kSse4, InstructionSet::kAvx2, InstructionSet::kAvx512};
inline constexpr std::size_t kInstructionSets = std::size(kAllInstructionSets);

/// As VELA_KERNEL_TARGET names it: SSE4, AVX2, AVX512.
std::string_view InstructionSetName(InstructionSet set);

/// The best set of this processor and its operating system.
InstructionSet BestInstructionSet();

namespace detail {
inline constinit std::atomic<int> chosen_set = -1;
int ChooseInstructionSet();
}  // namespace detail

/// The set that kernels run with: the best there is, or the one that the environment variable
/// VELA_KERNEL_TARGET named when the first kernel ran, if that is a lower one.
inline InstructionSet CurrentInstructionSet() {
  int chosen = detail::chosen_set.load(std::memory_order_relaxed);
  if (chosen < 0) [[unlikely]] {
    chosen = detail::ChooseInstructionSet();
  }
  return static_cast<InstructionSet>(chosen);
}

}  // namespace vela::kernel

#include "kernel/instruction_set.h"

#include <algorithm>
#include <cstdlib>

namespace vela::kernel {
namespace {

constexpr std::string_view kNames[kInstructionSets] = {"SSE4", "AVX2", "AVX512"};

bool HasAvx2() {
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
         __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2");
}

bool HasAvx512() {
  return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
         __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512cd");
}

}  // namespace

std::string_view InstructionSetName(InstructionSet set) {
  return kNames[static_cast<std::size_t>(set)];
}

InstructionSet BestInstructionSet() {
  __builtin_cpu_init();
  if (!HasAvx2()) return InstructionSet::kSse4;
  return HasAvx512() ? InstructionSet::kAvx512 : InstructionSet::kAvx2;
}

int detail::ChooseInstructionSet() {
  int chosen = static_cast<int>(BestInstructionSet());
  if (const char* const name = std::getenv("VELA_KERNEL_TARGET")) {
    const auto named = std::ranges::find(kNames, std::string_view(name)) - kNames;
    chosen = std::min(chosen, static_cast<int>(named));
  }
  chosen_set.store(chosen, std::memory_order_relaxed);
  return chosen;
}

}  // namespace vela::kernel

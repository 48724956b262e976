// Calls of kernels that are compiled once for each instruction set: what such a file includes ahead
// of Highway, after any HWY_DISABLED_TARGETS.
#pragma once

#include <cstddef>
#include <hwy/detect_targets.h>

#include "kernel/instruction_set.h"

namespace vela::kernel {

template <class Function>
struct PerInstructionSet;

/// One function as compiled for each instruction set; a call goes to that of the current one.
template <class Result, class... Args>
struct PerInstructionSet<Result(Args...)> {
  Result (*functions[kInstructionSets])(Args...);

  Result operator()(Args... args) const {
    return functions[static_cast<std::size_t>(CurrentInstructionSet())](args...);
  }
};

template <class Result, class... Args>
PerInstructionSet(Result (*)(Args...), Result (*)(Args...), Result (*)(Args...))
    -> PerInstructionSet<Result(Args...)>;

}  // namespace vela::kernel

// The namespaces that foreach_target.h fills; where it leaves one out, the next lower serves.
#define VELA_KERNEL_SSE4(...) &N_SSE4::__VA_ARGS__
#if HWY_TARGETS & HWY_AVX2
#define VELA_KERNEL_AVX2(...) &N_AVX2::__VA_ARGS__
#else
#define VELA_KERNEL_AVX2 VELA_KERNEL_SSE4
#endif
#if HWY_TARGETS & HWY_AVX3
#define VELA_KERNEL_AVX512(...) &N_AVX3::__VA_ARGS__
#else
#define VELA_KERNEL_AVX512 VELA_KERNEL_AVX2
#endif

/// The PerInstructionSet of a function, or of one specialisation of a function template, that is
/// defined in HWY_NAMESPACE.
#define VELA_KERNEL_FUNCTIONS(...)                                                                \
  ::vela::kernel::PerInstructionSet {                                                             \
    VELA_KERNEL_SSE4(__VA_ARGS__), VELA_KERNEL_AVX2(__VA_ARGS__), VELA_KERNEL_AVX512(__VA_ARGS__) \
  }

/// The same as a constant to call at once: a call costs no more than a look into it.
#define VELA_KERNEL_DISPATCH(...)                                         \
  ([]() -> const auto& {                                                  \
    static constexpr auto kFunctions{VELA_KERNEL_FUNCTIONS(__VA_ARGS__)}; \
    return kFunctions;                                                    \
  }())

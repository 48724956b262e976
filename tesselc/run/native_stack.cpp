#include "tesselc/run/native_stack.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <sys/resource.h>
#endif

namespace tesselc {
namespace {

// One call of a script function reaches no deeper than its statements and expressions nest, plus a
// member call.
constexpr std::uintptr_t kReserve = 1536 * 1024;

std::uintptr_t StackSize() {
#if defined(_WIN32)
  ULONG_PTR low = 0;
  ULONG_PTR high = 0;
  GetCurrentThreadStackLimits(&low, &high);
  return high - low;
#else
  constexpr std::uintptr_t kUsualSize = 8 * 1024 * 1024;
  rlimit limit;
  if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return kUsualSize;
  return limit.rlim_cur < kUsualSize ? limit.rlim_cur : kUsualSize;
#endif
}

}  // namespace

std::uintptr_t NativeStackLimit() {
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  const std::uintptr_t size = StackSize();
  return size > 2 * kReserve ? here - (size - kReserve) : here - size / 2;
}

}  // namespace tesselc

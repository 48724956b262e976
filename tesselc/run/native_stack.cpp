#include "tesselc/run/native_stack.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <csignal>
#include <pthread.h>
#endif

namespace tesselc {
namespace {

// One call of a script function reaches no deeper than its statements and expressions nest, plus a
// member call.
constexpr std::uintptr_t kReserve = 1536 * 1024;
constexpr std::uintptr_t kUsualSize = 8 * 1024 * 1024;

#if defined(_WIN32)
std::uintptr_t StackBelow(std::uintptr_t here) {
  ULONG_PTR low = 0;
  ULONG_PTR high = 0;
  GetCurrentThreadStackLimits(&low, &high);
  return here - low;
}
#else
std::uintptr_t StackBelow(std::uintptr_t here) {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) return kUsualSize;
  void* low = nullptr;
  std::size_t size = 0;
  pthread_attr_getstack(&attributes, &low, &size);
  pthread_attr_destroy(&attributes);
  return here - reinterpret_cast<std::uintptr_t>(low);
}

struct Work {
  const std::function<int()>& work;
  int result = 0;
};

void* RunWork(void* argument) {
  auto* work = static_cast<Work*>(argument);
  work->result = work->work();
  return nullptr;
}
#endif

}  // namespace

std::uintptr_t NativeStackLimit() {
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  const std::uintptr_t below = StackBelow(here);
  // A stack without limit is not to be filled up.
  const std::uintptr_t size = below < kUsualSize ? below : kUsualSize;
  return size > 2 * kReserve ? here - (size - kReserve) : here - size / 2;
}

int RunOnUsualStack(const std::function<int()>& work) {
#if defined(_WIN32)
  return work();
#else
  Work shared{work};
  pthread_attr_t attributes;
  pthread_t thread;
  pthread_attr_init(&attributes);
  pthread_attr_setstacksize(&attributes, kUsualSize);
  const bool started = pthread_create(&thread, &attributes, RunWork, &shared) == 0;
  pthread_attr_destroy(&attributes);
  if (!started) return work();
  // Signals are for the thread that works: they end its reading, and find it where it is.
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
  pthread_join(thread, nullptr);
  return shared.result;
#endif
}

}  // namespace tesselc

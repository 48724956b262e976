#include "kernel/parallel_copy.h"

#include <algorithm>
#include <array>
#include <exception>
#include <thread>

#ifdef _OPENMP
#include <omp.h>
#endif

namespace vela::kernel {

namespace {

constexpr int kFewestThreads = 3;
constexpr std::size_t kFewestElements = 10000;
// More threads than any machine in use runs at once; a larger request would only exhaust it.
constexpr std::size_t kMostThreads = 256;

bool StartThread(std::thread& thread, const std::function<void(std::size_t, std::size_t)>& part,
                 std::size_t begin, std::size_t end) {
  try {
    thread = std::thread(std::cref(part), begin, end);
    return true;
  } catch (const std::exception&) {
    return false;
  }
}

}  // namespace

int DefaultThreadCount() {
#ifdef _OPENMP
  return std::max(omp_get_max_threads(), 1);
#else
  return std::max(static_cast<int>(std::thread::hardware_concurrency()), 1);
#endif
}

void RunOverThreads(std::size_t count, int threads,
                    const std::function<void(std::size_t begin, std::size_t end)>& part) {
  const int wanted = threads > 0 ? threads : DefaultThreadCount();
  if (wanted < kFewestThreads || count < kFewestElements) return part(0, count);

  const std::size_t workers = std::min({count, static_cast<std::size_t>(wanted), kMostThreads});
  std::array<std::thread, kMostThreads> running;
  for (std::size_t i = 0; i < workers; ++i) {
    // The first count % workers runs take one element more.
    const std::size_t begin = count / workers * i + std::min(i, count % workers);
    const std::size_t end = begin + count / workers + (i < count % workers ? 1 : 0);
    if (!StartThread(running[i], part, begin, end)) part(begin, end);
  }
  for (std::thread& thread : running) {
    if (thread.joinable()) thread.join();
  }
}

}  // namespace vela::kernel

#pragma once

#include <cstddef>
#include <functional>
#include <span>

#include "kernel/convert.h"
#include "kernel/element_types.h"

namespace vela::kernel {

/// The number of threads used where none is asked for: the OpenMP maximum when built with OpenMP,
/// else the number of processors; at least 1.
int DefaultThreadCount();

/// Calls part(begin, end) for consecutive runs that cover 0 .. count - 1 exactly once, and returns
/// when all calls have returned. With `threads` (0 or less: DefaultThreadCount) below 3 or count
/// below 10000 that is one call on this thread, otherwise min(count, threads, 256) calls at once,
/// each on a thread of its own. The run of a thread that cannot be started is done on this thread.
/// part must not throw, and must be safe to call at the same time for different runs.
void RunOverThreads(std::size_t count, int threads,
                    const std::function<void(std::size_t begin, std::size_t end)>& part);

/// Convert, with the elements shared out by RunOverThreads. Needs target.size() == source.size()
/// and spans that do not overlap.
template <Element To, Element From>
void ParallelConvert(std::span<const From> source, std::span<To> target, int threads) {
  RunOverThreads(source.size(), threads, [&](std::size_t begin, std::size_t end) {
    Convert<To, From>(source.subspan(begin, end - begin), target.subspan(begin, end - begin));
  });
}

}  // namespace vela::kernel

#pragma once

#include <cstddef>

namespace vela::kernel {

/// From this size on, a result is better stored past the caches: they could not hold it anyway, and
/// what is stored need not be read first.
inline constexpr std::size_t kStreamBytes = std::size_t{1} << 25;

/// Runs of fewer bytes gain nothing from StreamCopy.
inline constexpr std::size_t kLeastStreamedRun = 1024;

/// Copies bytes past the caches. No overlap.
void StreamCopy(const void* from, void* to, std::size_t size);

}  // namespace vela::kernel

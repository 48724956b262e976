#include "kernel/stream_copy.h"

#include <cstdint>
#include <cstring>
#include <hwy/cache_control.h>

#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/stream_copy.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/line_start.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// Whole lines go past the caches, the bytes before and after them do not.
void StreamBytes(const std::uint8_t* HWY_RESTRICT from, std::uint8_t* HWY_RESTRICT to,
                 std::size_t size) {
  constexpr std::size_t kLine = 64;
  const hn::ScalableTag<std::uint8_t> d;
  std::size_t i = ElementsBeforeLine(to, size);
  std::memcpy(to, from, i);
  for (; i + kLine <= size; i += kLine) {
    for (std::size_t k = 0; k < kLine; k += hn::Lanes(d)) {
      hn::Stream(hn::LoadU(d, from + i + k), d, to + i + k);
    }
  }
  std::memcpy(to + i, from + i, size - i);
  hwy::FlushStream();
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

void StreamCopy(const void* from, void* to, std::size_t size) {
  VELA_KERNEL_DISPATCH(StreamBytes)
  (static_cast<const std::uint8_t*>(from), static_cast<std::uint8_t*>(to), size);
}

}  // namespace vela::kernel
#endif

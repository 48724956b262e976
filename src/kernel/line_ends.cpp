#include "kernel/line_ends.h"

#include <bit>
#include <cstring>

#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/line_ends.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kTextGroup = 64;

// A bit for each of kTextGroup bytes, set for CR and LF.
HWY_INLINE std::uint64_t EndBits(const std::uint8_t* text) {
  const hn::CappedTag<std::uint8_t, kTextGroup> d;
  constexpr std::size_t kLanes = hn::MaxLanes(d);
  std::uint64_t bits = 0;
  for (std::size_t at = 0; at < kTextGroup; at += kLanes) {
    const auto bytes = hn::LoadU(d, text + at);
    const auto ends = hn::Or(hn::Eq(bytes, hn::Set(d, '\n')), hn::Eq(bytes, hn::Set(d, '\r')));
    std::uint8_t stored[8];
    hn::StoreMaskBits(d, ends, stored);
    hwy::UnsignedFromSize<kLanes / 8> part;
    std::memcpy(&part, stored, sizeof part);
    bits |= std::uint64_t{part} << at;
  }
  return bits;
}

// Stores first + the position of every set bit. Most groups have few: storing some that are not
// there costs less than a guess at how many there are.
HWY_INLINE std::uint32_t* StorePositions(std::uint64_t bits, std::uint32_t first,
                                         std::uint32_t* ends) {
  constexpr std::uint64_t kNoneLeft = std::uint64_t{1}
                                      << (kTextGroup - 1);  // never 0, so no branch
  std::uint32_t* const stored = ends + std::popcount(bits);
  do {
    for (std::size_t i = 0; i < kLineEndsSlack; ++i, bits &= bits - 1) {
      *ends++ = first + static_cast<std::uint32_t>(std::countr_zero(bits | kNoneLeft));
    }
  } while (bits != 0);
  return stored;
}

std::uint32_t* FindLineEnds(const char* text, std::size_t size, std::uint32_t first,
                            std::uint32_t* ends) {
  std::size_t at = 0;
  const auto position = [&] { return first + static_cast<std::uint32_t>(at); };
  for (; at + kTextGroup <= size; at += kTextGroup) {
    const std::uint64_t bits = EndBits(reinterpret_cast<const std::uint8_t*>(text) + at);
    ends = StorePositions(bits, position(), ends);
  }
  for (; at < size; ++at) {
    if (text[at] == '\n' || text[at] == '\r') *ends++ = position();
  }
  return ends;
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

std::uint32_t* FindLineEnds(std::string_view text, std::uint32_t first, std::uint32_t* ends) {
  return VELA_KERNEL_DISPATCH(FindLineEnds)(text.data(), text.size(), first, ends);
}

}  // namespace vela::kernel
#endif

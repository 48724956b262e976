#include "kernel/rank_median.h"

#include <bit>

#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/rank_median.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {

// The place of the n-th bit that is set, counted from 0.
HWY_INLINE std::uint32_t SelectBit(std::uint64_t word, std::uint64_t n) {
#if HWY_TARGET <= HWY_AVX2
  word = _pdep_u64(std::uint64_t{1} << n, word);
#else
  for (; n > 0; --n) word &= word - 1;
#endif
  return static_cast<std::uint32_t>(std::countr_zero(word));
}

// A set of ranks with a place in it: how many there are below the word that was looked at last.
class RankSet {
 public:
  explicit RankSet(std::uint64_t* bits) : bits_(bits) {}

  // No vector instruction sets single bits all over.
  HWY_INLINE void Add(const std::uint32_t* ranks, std::size_t count) {
    const std::uint32_t limit = static_cast<std::uint32_t>(word_ * 64);
    std::uint64_t added = 0;
    for (std::size_t k = 0; k < count; ++k) {
      Flip(ranks[k]);
      added += ranks[k] < limit;
    }
    below_ += added;
  }
  HWY_INLINE void Remove(const std::uint32_t* ranks, std::size_t count) {
    const std::uint32_t limit = static_cast<std::uint32_t>(word_ * 64);
    std::uint64_t removed = 0;
    for (std::size_t k = 0; k < count; ++k) {
      Flip(ranks[k]);
      removed += ranks[k] < limit;
    }
    below_ -= removed;
  }

  // The n-th rank of the set, counted from 0; there must be one.
  HWY_INLINE std::uint32_t Select(std::uint64_t n) {
    while (below_ > n) below_ -= Count(--word_);
    for (std::uint64_t here; below_ + (here = Count(word_)) <= n; ++word_) below_ += here;
    return static_cast<std::uint32_t>(word_ * 64) + SelectBit(bits_[word_], n - below_);
  }

 private:
  HWY_INLINE void Flip(std::uint32_t rank) { bits_[rank / 64] ^= std::uint64_t{1} << rank % 64; }
  HWY_INLINE std::uint64_t Count(std::size_t word) const {
    return static_cast<std::uint64_t>(std::popcount(bits_[word]));
  }

  std::uint64_t* bits_;
  std::size_t word_ = 0;
  std::uint64_t below_ = 0;
};

void SlideOver(const detail::RankRow& row) {
  RankSet window(row.bits);
  for (std::size_t c = 0; c < row.side; ++c) window.Add(row.ranks + c * row.stride, row.side);
  for (std::size_t k = 0;; ++k) {
    row.low[k] = window.Select(row.place.low);
    if (row.place.is_mean) row.high[k] = window.Select(row.place.low + 1);
    if (k + 1 == row.count) break;
    window.Remove(row.ranks + k * row.stride, row.side);
    window.Add(row.ranks + (k + row.side) * row.stride, row.side);
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel::detail {

void SlideOverRanks(const RankRow& row) { VELA_KERNEL_DISPATCH(SlideOver)(row); }

}  // namespace vela::kernel::detail
#endif

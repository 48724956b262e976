#include "kernel/find.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>

#include "kernel/dispatch.h"
#include "kernel/double_blocks.h"
#include "kernel/missing.h"

#ifndef VELA_KERNEL_BIT_POSITIONS
#define VELA_KERNEL_BIT_POSITIONS
namespace vela::kernel {

// For each byte the positions of its set bits, lowest first, padded with 0.
using BitPositions = std::array<std::array<std::uint8_t, 8>, 256>;
inline constexpr BitPositions kBitPositions = [] {
  BitPositions table{};
  for (unsigned byte = 0; byte < 256; ++byte) {
    std::size_t count = 0;
    for (std::uint8_t bit = 0; bit < 8; ++bit) {
      if (byte >> bit & 1) table[byte][count++] = bit;
    }
  }
  return table;
}();

}  // namespace vela::kernel
#endif

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/find.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/load_doubles-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

struct EqualTo {
  double value;

  template <class D, class V>
  HWY_INLINE auto operator()(D d, V x) const {
    return hn::Eq(x, hn::Set(d, value));
  }
};

struct Near {
  double value, tolerance;

  template <class D, class V>
  HWY_INLINE auto operator()(D d, V x) const {
    const auto near = hn::Le(hn::Abs(hn::Sub(x, hn::Set(d, value))), hn::Set(d, tolerance));
    return hn::And(near, hn::Ne(x, hn::Set(d, kMissing)));
  }
};

// For a range that does not hold the missing value's own number.
struct Between {
  double low, high;

  template <class D, class V>
  HWY_INLINE auto operator()(D d, V x) const {
    return hn::And(hn::Ge(x, hn::Set(d, low)), hn::Le(x, hn::Set(d, high)));
  }
};

struct Inside {
  double low, high;

  template <class D, class V>
  HWY_INLINE auto operator()(D d, V x) const {
    const auto inside = hn::And(hn::Ge(x, hn::Set(d, low)), hn::Le(x, hn::Set(d, high)));
    return hn::And(inside, hn::Ne(x, hn::Set(d, kMissing)));
  }
};

// One bit for each of 8 elements, set where they match.
template <class T, class Matches>
HWY_INLINE unsigned MatchByte(const T* HWY_RESTRICT x, Matches matches) {
  const hn::CappedTag<double, 8> d;
  unsigned byte = 0;
  for (std::size_t i = 0; i < 8; i += hn::Lanes(d)) {
    std::uint8_t bits[8];
    hn::StoreMaskBits(d, matches(d, LoadDoubles(d, x + i)), bits);
    byte |= static_cast<unsigned>(bits[0]) << i;
  }
  return byte;
}

// Writes base plus the positions of the set bits, and whatever up to 8 indices in all.
HWY_INLINE void WritePositions(unsigned byte, std::uint32_t base, std::uint32_t* found) {
  const hn::CappedTag<std::uint32_t, 8> d;
  const hn::Rebind<std::uint8_t, decltype(d)> bytes_tag;
  for (std::size_t i = 0; i < 8; i += hn::Lanes(d)) {
    const auto positions = hn::PromoteTo(d, hn::LoadU(bytes_tag, kBitPositions[byte].data() + i));
    hn::StoreU(hn::Add(positions, hn::Set(d, base)), d, found + i);
  }
}

// Elements that are tested at a time where matches are rare.
constexpr std::size_t kGroup = 64;

template <class T, class Matches>
HWY_INLINE bool NoneMatches(const T* HWY_RESTRICT x, Matches matches) {
  const hn::CappedTag<double, 8> d;
  auto any = matches(d, LoadDoubles(d, x));
  for (std::size_t i = hn::Lanes(d); i < kGroup; i += hn::Lanes(d)) {
    any = hn::Or(any, matches(d, LoadDoubles(d, x + i)));
  }
  return hn::AllFalse(d, any);
}

// Counts the matches among the first elements of x, as many as fill whole groups of vectors; how
// many elements those are is added to done.
template <class T, class Matches>
std::size_t CountWhole(const T* HWY_RESTRICT x, std::size_t n, Matches matches, std::size_t& done) {
  const hn::ScalableTag<double> d;
  const hn::RebindToSigned<decltype(d)> di;
  constexpr std::size_t kChains = 4;
  hn::Vec<decltype(di)> counts[kChains];
  for (auto& count : counts) count = hn::Zero(di);
  const std::size_t lanes = hn::Lanes(d);
  std::size_t i = 0;
  for (; i + kChains * lanes <= n; i += kChains * lanes) {
    for (std::size_t k = 0; k < kChains; ++k) {
      // A match is all bits set, which is -1.
      const auto match = matches(d, LoadDoubles(d, x + i + k * lanes));
      counts[k] = hn::Sub(counts[k], hn::BitCast(di, hn::VecFromMask(d, match)));
    }
  }
  done += i;
  for (std::size_t k = 1; k < kChains; ++k) counts[0] = hn::Add(counts[0], counts[k]);
  return static_cast<std::size_t>(hn::GetLane(hn::SumOfLanes(di, counts[0])));
}

// Counts the matches in x and writes their indices, counted from base, as far as they fit. At most
// kBlockSize elements.
template <class T, class Matches>
std::size_t Collect(const T* HWY_RESTRICT x, std::size_t n, Matches matches, std::size_t base,
                    std::uint32_t* HWY_RESTRICT found, std::size_t capacity) {
  std::size_t count = 0;
  std::size_t i = 0;
  bool expect_none = true;
  for (; i + kGroup <= n && count + kGroup <= capacity; i += kGroup) {
    if (expect_none && NoneMatches(x + i, matches)) continue;
    const std::size_t before = count;
    for (std::size_t k = i; k < i + kGroup; k += 8) {
      const unsigned byte = MatchByte(x + k, matches);
      WritePositions(byte, static_cast<std::uint32_t>(base + k), found + count);
      count += static_cast<std::size_t>(std::popcount(byte));
    }
    expect_none = count == before;
  }
  if (capacity == 0) count = CountWhole(x, n, matches, i);
  const hn::CappedTag<double, 1> one;
  for (; i < n; ++i) {
    if (hn::AllFalse(one, matches(one, LoadDoubles(one, x + i)))) continue;
    if (count < capacity) found[count] = static_cast<std::uint32_t>(base + i);
    ++count;
  }
  return count;
}

template <class T>
std::size_t CollectEqual(const T* x, std::size_t n, double value, double /*unused*/,
                         std::size_t base, std::uint32_t* found, std::size_t capacity) {
  return Collect(x, n, EqualTo{value}, base, found, capacity);
}

template <class T>
std::size_t CollectNear(const T* x, std::size_t n, double value, double tolerance, std::size_t base,
                        std::uint32_t* found, std::size_t capacity) {
  return Collect(x, n, Near{value, tolerance}, base, found, capacity);
}

template <class T>
std::size_t CollectInside(const T* x, std::size_t n, double low, double high, std::size_t base,
                          std::uint32_t* found, std::size_t capacity) {
  if (low > kMissing || high < kMissing) {
    return Collect(x, n, Between{low, high}, base, found, capacity);
  }
  return Collect(x, n, Inside{low, high}, base, found, capacity);
}

}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

// collect counts the matches of a block and writes their indices, counted from a base, as far as
// they fit.
template <class T, class Collect>
std::size_t FindBy(std::span<const T> x, FindScope scope, std::span<std::uint32_t> found,
                   Collect collect) {
  const std::size_t end = std::min(scope.end, x.size());
  const std::size_t start = std::min(scope.start, end);
  std::size_t count = 0;
  ForEachLoadableBlock(x.subspan(start, end - start), [&](auto block, std::size_t offset) {
    count += collect(block, start + offset, found.subspan(std::min(count, found.size())));
    return !(scope.first_only && count > 0);
  });
  return scope.first_only ? std::min<std::size_t>(count, 1) : count;
}

}  // namespace

double DecimalUnit(int digits) {
  std::array<char, 16> text{'1', 'e'};
  const auto written = std::to_chars(text.data() + 2, text.data() + text.size(), -digits);
  double unit = 0;
  std::from_chars(text.data(), written.ptr, unit);
  return unit;
}

template <Element T>
std::size_t FindEqual(std::span<const T> x, double value, double tolerance, FindScope scope,
                      std::span<std::uint32_t> found) {
  // The difference of two infinities is NaN: compare them directly.
  const bool exact = tolerance == 0.0 || IsMissing(value) || std::isinf(value);
  return FindBy(
      x, scope, found, [=]<class U>(std::span<const U> block, std::size_t base, auto free) {
        const auto collect =
            exact ? VELA_KERNEL_DISPATCH(CollectEqual<U>) : VELA_KERNEL_DISPATCH(CollectNear<U>);
        return collect(block.data(), block.size(), value, tolerance, base, free.data(),
                       free.size());
      });
}

bool HoldsMissing(std::span<const double> x) {
  return FindEqual(x, kMissing, 0, {.first_only = true}, {}) > 0;
}

template <Element T>
std::size_t FindInRange(std::span<const T> x, double low, double high, FindScope scope,
                        std::span<std::uint32_t> found) {
  return FindBy(x, scope, found,
                [=]<class U>(std::span<const U> block, std::size_t base, auto free) {
                  return VELA_KERNEL_DISPATCH(CollectInside<U>)(
                      block.data(), block.size(), low, high, base, free.data(), free.size());
                });
}

#define VELA_KERNEL_INSTANTIATE(T)                                                   \
  template std::size_t FindEqual<T>(std::span<const T>, double, double, FindScope,   \
                                    std::span<std::uint32_t>);                       \
  template std::size_t FindInRange<T>(std::span<const T>, double, double, FindScope, \
                                      std::span<std::uint32_t>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

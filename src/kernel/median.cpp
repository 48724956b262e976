#include "kernel/median.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "kernel/dispatch.h"
#include "kernel/element_range.h"
#include "kernel/missing.h"
#include "kernel/read_ahead.h"
#include "kernel/vector_sort.h"

#ifndef VELA_KERNEL_MEDIAN_COLLECTED
#define VELA_KERNEL_MEDIAN_COLLECTED
namespace vela::kernel {

// What one pass over the elements finds: how many there are up to a bound, and how many, collected,
// between it and another.
struct Collected {
  std::size_t up_to_low = 0;
  std::size_t between = 0;
  bool complete = true;  // there was room for those between
};

// Vectors between two looks at the room that is left. Whole vectors are stored, so that the room is
// for so many more, and one.
inline constexpr std::size_t kVectorsPerCheck = 64;
template <class T>
inline constexpr std::size_t kSlack = (kVectorsPerCheck + 1) * 64 / sizeof(T);

}  // namespace vela::kernel
#endif

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/median.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// False for NaN.
template <class V>
HWY_INLINE auto UpTo(V v, V bound) {
  if constexpr (std::floating_point<hn::TFromV<V>>) {
    return hn::Le(v, bound);
  } else {
    return hn::Not(hn::Gt(v, bound));
  }
}

template <class T>
std::size_t CountEqual(const T* x, std::size_t n, T value) {
  const hn::ScalableTag<T> d;
  std::size_t count = 0;
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= n; i += hn::Lanes(d)) {
    count += hn::CountTrue(d, hn::Eq(hn::LoadU(d, x + i), hn::Set(d, value)));
  }
  return count + static_cast<std::size_t>(std::count(x + i, x + n, value));
}

// Collects the elements above low and below high, which may be done in place, until there is no
// room. Vectors are compressed in a register: some processors compress into memory slowly.
template <class T>
Collected CollectBetween(const T* x, std::size_t n, T low, T high, T* out, std::size_t room) {
  const hn::ScalableTag<T> d;
  const hn::RebindToSigned<decltype(d)> di;
  const std::size_t lanes = hn::Lanes(d);
  const auto lowest = hn::Set(d, low), highest = hn::Set(d, high);
  Collected result;
  auto minus_up_to = hn::Zero(di);  // lanes that hold no more than the vectors between two checks
  const auto visit = [&](std::size_t i) HWY_ATTR {
    const auto v = hn::LoadU(d, x + i);
    const auto up_to = UpTo(v, lowest);
    const auto between = hn::AndNot(up_to, hn::Lt(v, highest));
    minus_up_to = hn::Add(minus_up_to, hn::BitCast(di, hn::VecFromMask(d, up_to)));
    hn::StoreU(hn::Compress(v, between), d, out + result.between);
    result.between += hn::CountTrue(d, between);
  };
  const std::size_t whole = n - n % lanes;
  std::size_t i = 0;
  while (i < whole) {
    const std::size_t end = std::min(whole, i + kVectorsPerCheck * lanes);
    for (; i + 4 * lanes <= end; i += 4 * lanes) {
      ReadAhead(x + i, 4 * lanes * sizeof(T));
      for (std::size_t k = 0; k < 4; ++k) visit(i + k * lanes);
    }
    for (; i < end; i += lanes) visit(i);
    result.up_to_low -= static_cast<std::size_t>(hn::GetLane(hn::SumOfLanes(di, minus_up_to)));
    minus_up_to = hn::Zero(di);
    if (result.between > room) return {0, 0, false};
  }
  for (; i < n; ++i) {
    result.up_to_low += x[i] <= low;
    if (x[i] > low && x[i] < high) out[result.between++] = x[i];
  }
  return result;
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {
namespace {

// The positions in order of the middle two elements, or of the middle one twice.
struct Ranks {
  std::size_t lower, upper;
};

template <class T>
struct Middle {
  T lower, upper;
};

template <class T>
void SortValues(T* values, std::size_t n) {
  if constexpr (std::floating_point<T>) {
    VectorSort(values, n, true);
  } else {
    VectorSort(values, n);
  }
}

constexpr std::size_t kSampleSize = 4096;
constexpr std::size_t kSortSize = 4 * kSampleSize;

// Bounds that the element of a rank, and the next, are most likely between: where that rank would
// be in a sample, and five standard deviations of that place to either side. The sample takes one
// element at a scattered place of every stretch, so that no pattern of the data misleads it.
template <class T>
ElementRange<T> BoundsOf(const T* x, std::size_t n, std::size_t rank) {
  constexpr std::size_t kMargin = 160;
  std::array<T, kSampleSize> sample;
  const std::uint64_t stretch = n / kSampleSize;
  std::uint64_t scatter = 0;
  for (std::size_t i = 0; i < kSampleSize; ++i) {
    scatter += 0x9E3779B97F4A7C15;
    const std::uint64_t mixed = (scatter ^ scatter >> 29) * 0xBF58476D1CE4E5B9 >> 32;
    sample[i] = x[i * stretch + mixed % stretch];
  }
  SortValues(sample.data(), kSampleSize);
  const std::size_t place = rank / stretch;
  ElementRange<T> bounds{ElementRange<T>::kLeast, ElementRange<T>::kGreatest};
  if (place >= kMargin) bounds.low = sample[place - kMargin];
  if (place + kMargin < kSampleSize && sample[place + kMargin] == sample[place + kMargin]) {
    bounds.high = sample[place + kMargin];
  }
  return bounds;
}

template <class T>
Middle<T> SelectBySorting(const T* x, std::size_t n, Ranks ranks) {
  const auto sorted = std::make_unique_for_overwrite<T[]>(n);
  std::copy_n(x, n, sorted.get());
  SortValues(sorted.get(), n);
  return {sorted[ranks.lower], sorted[ranks.upper]};
}

template <class T>
Middle<T> Select(const T* x, std::size_t n, Ranks ranks) {
  if (n <= kSortSize) return SelectBySorting(x, n, ranks);
  const ElementRange<T> bounds = BoundsOf(x, n, ranks.lower);
  const std::size_t room = n / 8;
  const auto between = std::make_unique_for_overwrite<T[]>(room + kSlack<T>);
  const Collected found =
      VELA_KERNEL_DISPATCH(CollectBetween<T>)(x, n, bounds.low, bounds.high, between.get(), room);
  if (!found.complete) return SelectBySorting(x, n, ranks);

  // A bound's equals are not collected, so that no number of them is too many.
  const std::size_t end = found.up_to_low + found.between;
  const auto is_between = [&](std::size_t rank) { return rank >= found.up_to_low && rank < end; };
  const auto bound_at = [&](std::size_t rank) -> std::optional<T> {
    const bool low = rank < found.up_to_low;
    const T bound = low ? bounds.low : bounds.high;
    const std::size_t equals = VELA_KERNEL_DISPATCH(CountEqual<T>)(x, n, bound);
    const std::size_t distance = low ? found.up_to_low - 1 - rank : rank - end;
    return distance < equals ? std::optional(bound) : std::nullopt;
  };
  const auto in_collected = [&](std::size_t lower, std::size_t upper) {
    return Select(between.get(), found.between, {lower - found.up_to_low, upper - found.up_to_low});
  };
  if (is_between(ranks.lower) && is_between(ranks.upper)) {
    return in_collected(ranks.lower, ranks.upper);
  }
  const auto single = [&](std::size_t rank) {
    return is_between(rank) ? std::optional(in_collected(rank, rank).lower) : bound_at(rank);
  };
  const std::optional<T> lower = single(ranks.lower);
  const std::optional<T> upper = lower ? single(ranks.upper) : std::nullopt;
  return upper ? Middle<T>{*lower, *upper} : SelectBySorting(x, n, ranks);
}

// One and two bytes: a count of every value of a byte, the high one first.
using ByteCounts = std::array<std::size_t, 256>;

// The first byte value whose count takes the total beyond rank, which becomes the rank among those
// of that value.
std::size_t ByteAt(const ByteCounts& counts, std::size_t& rank) {
  std::size_t byte = 0;
  for (; rank >= counts[byte]; ++byte) rank -= counts[byte];
  return byte;
}

// Counts in several tables, for a processor waits for a count that it has just stored.
template <class T, class ByteOf>
ByteCounts CountBytes(const T* x, std::size_t n, ByteOf byte_of) {
  std::array<ByteCounts, 4> tables{};
  std::size_t i = 0;
  for (; i + 4 <= n; i += 4) {
    for (std::size_t k = 0; k < 4; ++k) ++tables[k][byte_of(x[i + k])];
  }
  for (; i < n; ++i) ++tables[0][byte_of(x[i])];
  ByteCounts counts = tables[0];
  for (std::size_t byte = 0; byte < 256; ++byte) {
    for (std::size_t k = 1; k < 4; ++k) counts[byte] += tables[k][byte];
  }
  return counts;
}

template <class T>
requires(sizeof(T) <= 2) Middle<T> Select(const T* x, std::size_t n, Ranks ranks) {
  using Key = std::make_unsigned_t<T>;
  constexpr Key kSign = std::is_signed_v<T> ? Key{1} << (sizeof(T) * 8 - 1) : 0;
  const auto key = [](T value) { return static_cast<Key>(static_cast<Key>(value) ^ kSign); };
  constexpr unsigned kShift = sizeof(T) * 8 - 8;
  const ByteCounts high_counts =
      CountBytes(x, n, [&](T value) { return static_cast<std::size_t>(key(value) >> kShift); });
  std::size_t counted_high = 256;
  ByteCounts low_counts;
  const auto at = [&](std::size_t rank) {
    std::size_t found = ByteAt(high_counts, rank);
    if constexpr (sizeof(T) == 2) {
      if (found != counted_high) {
        counted_high = found;
        low_counts = {};
        for (std::size_t i = 0; i < n; ++i) {
          low_counts[key(x[i]) & 255] += (key(x[i]) >> kShift) == found;
        }
      }
      found = found << 8 | ByteAt(low_counts, rank);
    }
    return static_cast<T>(static_cast<Key>(found) ^ kSign);
  };
  return {at(ranks.lower), at(ranks.upper)};
}

}  // namespace

template <Element T>
double Median(std::span<const T> x) {
  if (x.empty()) return kMissing;
  const Middle<T> middle = Select(x.data(), x.size(), {(x.size() - 1) / 2, x.size() / 2});
  if (IsMissing(middle.lower) || IsMissing(middle.upper)) return 0;
  const double upper = static_cast<double>(middle.upper);
  if (x.size() % 2 == 1) return upper;
  const double sum = upper + static_cast<double>(middle.lower);
  return IsMissing(sum) ? 0 : sum / 2;
}

#define VELA_KERNEL_INSTANTIATE(T) template double Median<T>(std::span<const T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

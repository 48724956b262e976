#include "kernel/sort.h"

#include <array>
#include <bit>
#include <climits>
#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <type_traits>

#include "kernel/vector_sort.h"

namespace vela::kernel {
namespace {

template <class T>
void CountingSort(std::span<T> values) {
  constexpr int kLowest = std::numeric_limits<T>::min();
  std::array<std::size_t, 1 << CHAR_BIT> counts{};
  for (const T value : values) ++counts[static_cast<std::size_t>(value - kLowest)];
  auto next = values.begin();
  for (std::size_t k = 0; k < counts.size(); ++k) {
    next = std::fill_n(next, counts[k], static_cast<T>(static_cast<int>(k) + kLowest));
  }
}

// An unsigned number that orders like the value, NaN above all, in either sorting order.
template <class T>
auto OrderedKey(T value, bool ascending) {
  if constexpr (std::floating_point<T>) {
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    constexpr Bits kSign = Bits{1} << (sizeof(T) * CHAR_BIT - 1);
    const auto key_of = [](T number) {
      const Bits bits = std::bit_cast<Bits>(number);
      return bits & kSign ? static_cast<Bits>(~bits) : static_cast<Bits>(bits | kSign);
    };
    const Bits nan_key = key_of(std::numeric_limits<T>::infinity()) + 1;
    const Bits key = key_of(value + T{0});  // the sum makes 0.0 of -0.0
    return value != value ? nan_key : ascending ? key : static_cast<Bits>(~key);
  } else {
    const std::uint64_t offset = static_cast<std::uint64_t>(std::numeric_limits<T>::min());
    const std::uint64_t key = static_cast<std::uint64_t>(value) - offset;
    return ascending ? key : ~key;
  }
}

// A packed element is the leading bits of its key over its position, as a signed number: of those
// the vector sort needs no copy in another order.
constexpr int kPositionBits = 32;

std::int64_t Pack(std::uint64_t key, std::size_t position) {
  constexpr std::uint64_t kSign = std::uint64_t{1} << 63;
  return static_cast<std::int64_t>((key << kPositionBits | position) ^ kSign);
}

std::uint32_t PositionIn(std::int64_t packed) { return static_cast<std::uint32_t>(packed); }

void SortPacked(std::span<std::int64_t> packed) {
  constexpr std::size_t kFewest = 16;
  if (packed.size() < kFewest) {
    std::sort(packed.begin(), packed.end());
  } else {
    VectorSort(packed.data(), packed.size());
  }
}

// Sorts each run of elements whose leading key bits agree by the key bits that were left out.
template <class Key>
void SortRuns(std::span<std::int64_t> packed, Key key_at) {
  const auto leading = [&](std::size_t k) { return packed[k] >> kPositionBits; };
  for (std::size_t begin = 0, end; begin < packed.size(); begin = end) {
    for (end = begin + 1; end < packed.size() && leading(end) == leading(begin);) ++end;
    if (end - begin == 1) continue;
    for (std::size_t k = begin; k < end; ++k) {
      const std::uint32_t position = PositionIn(packed[k]);
      packed[k] = Pack(key_at(position), position);
    }
    SortPacked(packed.subspan(begin, end - begin));
  }
}

// Brings elements and indices into the order of the packed positions, and uses the packed elements
// up as scratch.
template <class T>
void Arrange(std::span<T> values, std::span<std::uint32_t> indices, std::span<std::int64_t> packed,
             std::uint32_t* moved) {
  for (std::size_t k = 0; k < packed.size(); ++k) {
    const std::uint32_t from = PositionIn(packed[k]);
    moved[k] = indices[from];
    std::memcpy(&packed[k], &values[from], sizeof(T));
  }
  for (std::size_t k = 0; k < packed.size(); ++k) std::memcpy(&values[k], &packed[k], sizeof(T));
  std::copy_n(moved, indices.size(), indices.begin());
}

}  // namespace

template <Element T>
void Sort(std::span<T> values, bool ascending) {
  if constexpr (std::floating_point<T>) {
    return VectorSort(values.data(), values.size(), ascending);
  } else if constexpr (sizeof(T) == 1) {
    CountingSort(values);
  } else {
    VectorSort(values.data(), values.size());
  }
  if (!ascending) std::reverse(values.begin(), values.end());
}

SortScratch::SortScratch(std::size_t count)
    : packed(std::make_unique_for_overwrite<std::int64_t[]>(count)),
      moved(std::make_unique_for_overwrite<std::uint32_t[]>(count)) {}

template <Element T>
void SortWithIndices(std::span<T> values, std::span<std::uint32_t> indices, bool ascending,
                     const SortScratch& scratch) {
  const std::size_t n = values.size();
  if (indices.size() != n || n > std::size_t{1} << kPositionBits) {
    throw std::invalid_argument("SortWithIndices: indices do not match the values");
  }
  if (n < 2) return;
  std::uint64_t lowest = std::numeric_limits<std::uint64_t>::max(), highest = 0;
  for (const T value : values) {
    const std::uint64_t key = OrderedKey(value, ascending);
    lowest = std::min(lowest, key);
    highest = std::max(highest, key);
  }
  const auto key_at = [&](std::size_t k) -> std::uint64_t {
    return OrderedKey(values[k], ascending) - lowest;
  };
  const int left_out = std::max<int>(std::bit_width(highest - lowest) - kPositionBits, 0);
  const std::span packed(scratch.packed.get(), n);
  for (std::size_t k = 0; k < n; ++k) packed[k] = Pack(key_at(k) >> left_out, k);
  SortPacked(packed);
  if (left_out > 0) SortRuns(packed, key_at);
  Arrange(values, indices, packed, scratch.moved.get());
}

#define VELA_KERNEL_INSTANTIATE(T)                                               \
  template void Sort<T>(std::span<T>, bool);                                     \
  template void SortWithIndices<T>(std::span<T>, std::span<std::uint32_t>, bool, \
                                   const SortScratch&);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

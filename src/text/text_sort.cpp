#include "text/text_sort.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>

#include "kernel/vector_sort.h"

namespace vela::text {
namespace {

constexpr std::size_t kPieceSize = sizeof(std::uint64_t);

using kernel::WideKey;

// A key orders like eight bytes of a text, then by how many of the eight the text has, then by the
// text's position, so that the end of a text comes before any byte and equal texts stay in order.
// For a descending order the first two are inverted.
constexpr WideKey MakeKey(std::uint64_t piece, std::uint32_t bytes, std::uint32_t index) {
  return {std::uint64_t{bytes} << 32 | index, piece};
}
constexpr std::uint32_t IndexOf(const WideKey& key) { return static_cast<std::uint32_t>(key.low); }
constexpr std::uint32_t BytesOf(const WideKey& key) {
  return static_cast<std::uint32_t>(key.low >> 32);
}

class Sorter {
 public:
  Sorter(std::span<const CStringUTF8> texts, bool ascending)
      : texts_(texts), inverted_(ascending ? 0 : ~std::uint64_t{0}) {}

  // Texts that agree in all pieces so far are a range; the ranges are sorted by the next piece
  // until none has two texts.
  void Sort(std::vector<WideKey>& keys) {
    std::vector<Range> ranges = {keys}, equal;
    for (std::size_t depth = 0; !ranges.empty(); depth += kPieceSize) {
      for (const Range& range : ranges) Load(range, depth);
      equal.clear();
      for (const Range& range : ranges) {
        SortKeys(range);
        PushEqualRanges(range, equal);
      }
      ranges.swap(equal);
    }
  }

 private:
  using Range = std::span<WideKey>;

  void Load(const Range& range, std::size_t depth) const {
    // Texts lie anywhere in memory.
    constexpr std::size_t kAhead = 16;
    const std::size_t size = range.size();
    for (std::size_t i = 0; i < size; ++i) {
      if (i + kAhead < size) {
        __builtin_prefetch(texts_[IndexOf(range[i + kAhead])].c_str() + depth);
      }
      const std::uint32_t index = IndexOf(range[i]);
      range[i] = KeyOf(texts_[index].View().substr(depth), index);
    }
  }

  WideKey KeyOf(std::string_view rest, std::uint32_t index) const {
    const std::size_t size = std::min(rest.size(), kPieceSize);
    std::uint64_t piece = 0;
    if (size == kPieceSize) {
      std::memcpy(&piece, rest.data(), kPieceSize);
    } else {
      std::memcpy(&piece, rest.data(), size);
    }
    static_assert(std::endian::native == std::endian::little);
    const std::size_t bytes = inverted_ == 0 ? size : kPieceSize - size;
    return MakeKey(__builtin_bswap64(piece) ^ inverted_, static_cast<std::uint32_t>(bytes), index);
  }

  static void SortKeys(const Range& range) {
    constexpr std::size_t kSmall = 64;
    if (range.size() < kSmall) {
      std::sort(range.begin(), range.end());
    } else {
      kernel::VectorSort(range.data(), range.size());
    }
  }

  void PushEqualRanges(const Range& range, std::vector<Range>& equal) const {
    const std::uint32_t whole = inverted_ == 0 ? kPieceSize : 0;
    for (std::size_t begin = 0, end; begin < range.size(); begin = end) {
      end = begin + 1;
      const WideKey& first = range[begin];
      if (BytesOf(first) != whole) continue;  // ended texts are in order by position
      while (end < range.size() && range[end].high == first.high && BytesOf(range[end]) == whole) {
        ++end;
      }
      if (end - begin > 1) equal.push_back(range.subspan(begin, end - begin));
    }
  }

  std::span<const CStringUTF8> texts_;
  std::uint64_t inverted_;
};

}  // namespace

std::vector<std::uint32_t> SortedOrder(std::span<const CStringUTF8> texts, bool ascending,
                                       bool empty_first) {
  std::vector<std::uint32_t> order;
  order.reserve(texts.size());
  std::vector<WideKey> keys;
  keys.reserve(texts.size());
  for (std::uint32_t i = 0; i < texts.size(); ++i) {
    if (texts[i].IsEmpty()) {
      order.push_back(i);
    } else {
      keys.push_back(MakeKey(0, 0, i));
    }
  }
  Sorter(texts, ascending).Sort(keys);
  const std::size_t empty_count = order.size();
  for (const WideKey& key : keys) order.push_back(IndexOf(key));
  if (!empty_first) {
    std::rotate(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(empty_count),
                order.end());
  }
  return order;
}

}  // namespace vela::text

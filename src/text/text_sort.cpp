#include "text/text_sort.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>
#include <tuple>

namespace vela::text {
namespace {

constexpr std::size_t kPieceSize = sizeof(std::uint64_t);

// Eight bytes of a text as a number that orders like them; the end of the text orders below any
// byte by the count of bytes. For a descending order both are inverted.
struct Key {
  std::uint64_t piece;
  std::uint32_t index;
  std::uint32_t bytes;

  auto Order() const { return std::tie(piece, bytes, index); }
};

class Sorter {
 public:
  Sorter(std::span<const CStringUTF8> texts, bool ascending)
      : texts_(texts), inverted_(ascending ? 0 : ~std::uint64_t{0}) {}

  // Texts that agree in all pieces so far are a range; each is sorted by its next piece. Ranges
  // wait on a stack of our own: texts may agree in any number of pieces.
  void Sort(std::vector<Key>& keys) {
    ranges_.push_back({0, keys.size(), 0});
    while (!ranges_.empty()) {
      const Range range = ranges_.back();
      ranges_.pop_back();
      const std::span<Key> part(keys.data() + range.begin, range.end - range.begin);
      for (Key& key : part) Load(key, range.depth);
      std::sort(part.begin(), part.end(),
                [](const Key& a, const Key& b) { return a.Order() < b.Order(); });
      PushEqualRanges(part, range);
    }
  }

 private:
  struct Range {
    std::size_t begin, end, depth;
  };

  void Load(Key& key, std::size_t depth) const {
    const std::string_view rest = texts_[key.index].View().substr(depth);
    const std::size_t size = std::min(rest.size(), kPieceSize);
    std::uint64_t piece = 0;
    std::memcpy(&piece, rest.data(), size);
    static_assert(std::endian::native == std::endian::little);
    key.piece = __builtin_bswap64(piece) ^ inverted_;
    key.bytes = static_cast<std::uint32_t>(inverted_ == 0 ? size : kPieceSize - size);
  }

  void PushEqualRanges(std::span<const Key> part, const Range& range) {
    const std::uint32_t whole = inverted_ == 0 ? kPieceSize : 0;
    for (std::size_t begin = 0, end; begin < part.size(); begin = end) {
      end = begin + 1;
      const Key& first = part[begin];
      if (first.bytes != whole) continue;  // ended texts are in order by index
      while (end < part.size() && part[end].piece == first.piece && part[end].bytes == whole) ++end;
      if (end - begin < 2) continue;
      ranges_.push_back({range.begin + begin, range.begin + end, range.depth + kPieceSize});
    }
  }

  std::span<const CStringUTF8> texts_;
  std::uint64_t inverted_;
  std::vector<Range> ranges_;
};

}  // namespace

std::vector<std::uint32_t> SortedOrder(std::span<const CStringUTF8> texts, bool ascending,
                                       bool empty_first) {
  std::vector<std::uint32_t> order;
  order.reserve(texts.size());
  std::vector<Key> keys;
  keys.reserve(texts.size());
  for (std::uint32_t i = 0; i < texts.size(); ++i) {
    if (texts[i].IsEmpty()) {
      order.push_back(i);
    } else {
      keys.push_back({0, i, 0});
    }
  }
  Sorter(texts, ascending).Sort(keys);
  const std::size_t empty_count = order.size();
  for (const Key& key : keys) order.push_back(key.index);
  if (!empty_first) {
    std::rotate(order.begin(), order.begin() + static_cast<std::ptrdiff_t>(empty_count),
                order.end());
  }
  return order;
}

}  // namespace vela::text

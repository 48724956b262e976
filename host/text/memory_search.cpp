#include "host/text/memory_search.h"

#include <algorithm>
#include <cstring>
#include <functional>

#include "host/text/byte_scan.h"

namespace vela::host {
namespace {

// Bytes that may be compared in vain, besides some for each byte of text.
constexpr std::size_t kMostCompared = 1024;

}  // namespace

#if defined(_WIN32)

namespace {

// The longest suffix in the order of the bytes, or in the opposite order.
struct Suffix {
  std::size_t start;
  std::size_t period;
};

template <typename Less>
Suffix MaximalSuffix(std::string_view needle, Less less) {
  std::size_t start = 0;
  std::size_t candidate = 1;
  std::size_t offset = 0;
  std::size_t period = 1;
  while (candidate + offset < needle.size()) {
    const auto a = static_cast<unsigned char>(needle[candidate + offset]);
    const auto b = static_cast<unsigned char>(needle[start + offset]);
    if (a == b) {
      if (++offset == period) {
        candidate += period;
        offset = 0;
      }
    } else if (less(a, b)) {
      candidate += offset + 1;
      offset = 0;
      period = candidate - start;
    } else {
      start = candidate++;
      offset = 0;
      period = 1;
    }
  }
  return {start, period};
}

}  // namespace

ByteSearch::ByteSearch(std::string_view needle) : needle_(needle) {
  const std::size_t size = needle.size();
  if (size < 2) return;
  const Suffix up = MaximalSuffix(needle, std::less<>());
  const Suffix down = MaximalSuffix(needle, std::greater<>());
  const Suffix& cut = up.start > down.start ? up : down;
  left_ = cut.start;
  const bool periodic = left_ + cut.period <= size &&
                        std::memcmp(needle.data(), needle.data() + cut.period, left_) == 0;
  shift_ = periodic ? cut.period : std::max(left_, size - left_) + 1;
  overlap_ = periodic ? size - cut.period : 0;
  to_last_.fill(size);
  for (std::size_t i = 0; i < size; ++i) {
    to_last_[static_cast<unsigned char>(needle[i])] = size - 1 - i;
  }
}

std::size_t ByteSearch::FindLong(std::string_view text) const {
  const std::size_t size = needle_.size();
  if (text.size() < size) return std::string_view::npos;
  // Most texts are left here: no occurrence of the first byte, or only a late one.
  std::size_t at = text.find(needle_.front());
  if (at == std::string_view::npos) return at;
  std::size_t known = 0;  // bytes at the window's start that are known to match
  while (size <= text.size() - at) {
    if (const std::size_t skip = to_last_[static_cast<unsigned char>(text[at + size - 1])]) {
      // A short move would stay within one period of what is known, where nothing can match.
      at += std::max(skip, known);
      known = 0;
      if (at > text.size()) break;
      continue;
    }
    std::size_t i = std::max(left_, known);
    while (i < size && needle_[i] == text[at + i]) ++i;
    if (i < size) {
      at += i - left_ + 1;
      known = 0;
      continue;
    }
    i = left_;
    while (i > known && needle_[i - 1] == text[at + i - 1]) --i;
    if (i <= known) return at;
    at += shift_;
    known = overlap_;
    if (at > text.size()) break;
  }
  return std::string_view::npos;
}

#else

ByteSearch::ByteSearch(std::string_view needle) : needle_(needle) {}

std::size_t ByteSearch::FindLong(std::string_view text) const {
  const void* found = ::memmem(text.data(), text.size(), needle_.data(), needle_.size());
  if (found == nullptr) return std::string_view::npos;
  return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

#endif

// Looks at the places where the needle's first and last byte are where they belong.
std::size_t ByteSearch::FindByEnds(std::string_view text) const {
  const std::size_t last = needle_.size() - 1;
  const Bytes16 first_byte = Bytes16::Fill(needle_.front());
  const Bytes16 last_byte = Bytes16::Fill(needle_.back());
  std::size_t compared = 0;
  std::size_t at = 0;
  for (; at + last + Bytes16::kSize <= text.size(); at += Bytes16::kSize) {
    const char* const window = text.data() + at;
    unsigned candidates =
        (Bytes16::Load(window).Equal(first_byte) & Bytes16::Load(window + last).Equal(last_byte))
            .HighBits();
    for (; candidates != 0; candidates &= candidates - 1) {
      const auto offset = static_cast<std::size_t>(std::countr_zero(candidates));
      if (std::memcmp(window + offset, needle_.data(), last) == 0) return at + offset;
      compared += last;
    }
    // Texts that match again and again for long are left to the search that takes linear time.
    if (compared > kMostCompared + 4 * at) break;
  }
  const std::size_t found = FindLong(text.substr(at));
  return found == std::string_view::npos ? found : at + found;
}

std::size_t ByteSearch::FindIn(std::string_view text, std::size_t start) const {
  if (start > text.size() || needle_.size() > text.size() - start) return std::string_view::npos;
  if (needle_.empty()) return start;
  if (needle_.size() == 1) return text.find(needle_.front(), start);
  const std::size_t found = FindByEnds(text.substr(start));
  return found == std::string_view::npos ? found : start + found;
}

}  // namespace vela::host

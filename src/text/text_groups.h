// Groups of equal texts.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "frame/interface/string_utf8.h"

namespace vela::text {

// A hash table from a text to the number of its group; groups count from 0 in the order in which
// their first texts are added. Texts are borrowed and must stay where they are. Adding takes
// constant time on average. At most 2^31 groups.
class TextGroups {
 public:
  TextGroups();

  struct Membership {
    std::uint32_t group;
    bool is_new;
  };
  Membership Add(std::string_view text) { return Add(text, Hash(text)); }
  // Adds the texts in order and tells use(membership) of each. Faster than one by one: the memory
  // that a text needs is on its way while others are dealt with.
  template <class Use>
  void AddAll(std::span<const CStringUTF8> texts, Use&& use);
  std::size_t size() const { return count_; }

 private:
  // A group's first text, or a free slot with a null one.
  struct Slot {
    const char* text = nullptr;
    std::uint32_t size = 0;
    std::uint32_t hash = 0;
    std::uint32_t group = 0;
  };

  static std::uint32_t Hash(std::string_view text);
  static constexpr std::size_t kTogether = 32;

  Membership Add(std::string_view text, std::uint32_t hash);
  void Grow();
  // The slot of the text's group, or the free one where it belongs.
  std::size_t FindSlot(std::string_view text, std::uint32_t hash) const;
  // The text that the one with the hash is likely to be compared with first, or null.
  const char* Candidate(std::uint32_t hash) const;
  std::size_t Mask() const { return slots_.size() - 1; }

  std::vector<Slot> slots_;  // a power of two of them
  std::size_t count_ = 0;
};

template <class Use>
void TextGroups::AddAll(std::span<const CStringUTF8> texts, Use&& use) {
  std::uint32_t hashes[kTogether];
  while (!texts.empty()) {
    const auto together = texts.first(std::min(texts.size(), kTogether));
    for (std::size_t i = 0; i < together.size(); ++i) {
      hashes[i] = Hash(together[i].View());
      __builtin_prefetch(&slots_[hashes[i] & Mask()]);
    }
    for (std::size_t i = 0; i < together.size(); ++i) __builtin_prefetch(Candidate(hashes[i]));
    for (std::size_t i = 0; i < together.size(); ++i) use(Add(together[i].View(), hashes[i]));
    texts = texts.subspan(together.size());
  }
}

}  // namespace vela::text

// Groups of equal texts.
#pragma once

#include <algorithm>
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
  Membership Add(std::string_view text) { return Add(Key(text)); }
  // Adds the texts in order and tells use(membership) of each. Faster than one by one: the memory
  // that a text needs is on its way while others are dealt with.
  template <class Use>
  void AddAll(std::span<const CStringUTF8> texts, Use&& use);
  std::size_t size() const { return groups_.size(); }

 private:
  // A text with its ends at hand, which are all of it when it is short.
  struct Key {
    explicit Key(std::string_view whole);
    bool operator==(const Key& other) const {
      return first == other.first && last == other.last && text.size() == other.text.size() &&
             (text.size() <= 2 * sizeof first || text == other.text);
    }
    std::uint32_t Hash() const;

    std::uint64_t first, last;
    std::string_view text;
  };
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t group = kNone;
  };

  static constexpr std::uint32_t kNone = 0xFFFFFFFF;
  static constexpr std::size_t kTogether = 32;

  Membership Add(const Key& key) { return Add(key, key.Hash()); }
  Membership Add(const Key& key, std::uint32_t hash);
  void Grow();
  std::size_t Mask() const { return slots_.size() - 1; }

  std::vector<Slot> slots_;  // a power of two of them
  std::vector<Key> groups_;  // the first text of each
};

template <class Use>
void TextGroups::AddAll(std::span<const CStringUTF8> texts, Use&& use) {
  std::vector<Key> keys;
  keys.reserve(kTogether);
  std::uint32_t hashes[kTogether];
  while (!texts.empty()) {
    const auto together = texts.first(std::min(texts.size(), kTogether));
    texts = texts.subspan(together.size());
    for (const CStringUTF8& text : texts.first(std::min(texts.size(), kTogether))) {
      __builtin_prefetch(text.c_str());
    }
    keys.clear();
    for (std::size_t i = 0; i < together.size(); ++i) {
      hashes[i] = keys.emplace_back(together[i].View()).Hash();
      __builtin_prefetch(&slots_[hashes[i] & Mask()]);
    }
    for (std::size_t i = 0; i < together.size(); ++i) {
      const std::uint32_t group = slots_[hashes[i] & Mask()].group;
      if (group != kNone) __builtin_prefetch(&groups_[group]);
    }
    for (std::size_t i = 0; i < together.size(); ++i) use(Add(keys[i], hashes[i]));
  }
}

}  // namespace vela::text

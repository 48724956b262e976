// Groups of equal texts.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

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
  Membership Add(std::string_view text);
  std::size_t size() const { return groups_.size(); }

 private:
  struct Group {
    std::size_t hash;
    std::string_view text;
  };

  void Grow();
  // The slot of the text's group, or the free one where it belongs.
  std::size_t FindSlot(std::string_view text, std::size_t hash) const;

  std::vector<Group> groups_;
  std::vector<std::uint32_t> slots_;  // group + 1, or 0 when free; a power of two of them
};

}  // namespace vela::text

#include "text/text_groups.h"

#include <functional>

namespace vela::text {
namespace {

constexpr std::size_t kFirstSlots = 64;

}  // namespace

TextGroups::TextGroups() : slots_(kFirstSlots) {}

TextGroups::Membership TextGroups::Add(std::string_view text) {
  const std::size_t hash = std::hash<std::string_view>()(text);
  std::size_t slot = FindSlot(text, hash);
  if (slots_[slot] != 0) return {slots_[slot] - 1, false};
  if (2 * (groups_.size() + 1) > slots_.size()) {
    Grow();
    slot = FindSlot(text, hash);
  }
  groups_.push_back({hash, text});
  slots_[slot] = static_cast<std::uint32_t>(groups_.size());
  return {slots_[slot] - 1, true};
}

std::size_t TextGroups::FindSlot(std::string_view text, std::size_t hash) const {
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
    if (slots_[slot] == 0) return slot;
    const Group& group = groups_[slots_[slot] - 1];
    if (group.hash == hash && group.text == text) return slot;
  }
}

void TextGroups::Grow() {
  std::vector<std::uint32_t> slots(slots_.size() * 2);
  const std::size_t mask = slots.size() - 1;
  for (std::size_t i = 0; i < groups_.size(); ++i) {
    std::size_t slot = groups_[i].hash & mask;
    while (slots[slot] != 0) slot = (slot + 1) & mask;
    slots[slot] = static_cast<std::uint32_t>(i + 1);
  }
  slots_.swap(slots);
}

}  // namespace vela::text

#include "text/text_groups.h"

#include <cstring>
#include <functional>

namespace vela::text {
namespace {

constexpr std::size_t kFirstSlots = 64;

}  // namespace

TextGroups::TextGroups() : slots_(kFirstSlots) {}

std::uint32_t TextGroups::Hash(std::string_view text) {
  const std::size_t hash = std::hash<std::string_view>()(text);
  return static_cast<std::uint32_t>(hash ^ hash >> 32);
}

TextGroups::Membership TextGroups::Add(std::string_view text, std::uint32_t hash) {
  std::size_t slot = FindSlot(text, hash);
  if (slots_[slot].text != nullptr) return {slots_[slot].group, false};
  if (4 * (count_ + 1) > 3 * slots_.size()) {
    Grow();
    slot = FindSlot(text, hash);
  }
  const auto group = static_cast<std::uint32_t>(count_++);
  slots_[slot] = {text.data(), static_cast<std::uint32_t>(text.size()), hash, group};
  return {group, true};
}

const char* TextGroups::Candidate(std::uint32_t hash) const {
  const Slot& slot = slots_[hash & Mask()];
  return slot.text;
}

std::size_t TextGroups::FindSlot(std::string_view text, std::uint32_t hash) const {
  for (std::size_t at = hash & Mask();; at = (at + 1) & Mask()) {
    const Slot& slot = slots_[at];
    if (slot.text == nullptr) return at;
    if (slot.hash == hash && slot.size == text.size() &&
        std::memcmp(slot.text, text.data(), text.size()) == 0) {
      return at;
    }
  }
}

void TextGroups::Grow() {
  std::vector<Slot> slots(slots_.size() * 2);
  const std::size_t mask = slots.size() - 1;
  for (const Slot& slot : slots_) {
    if (slot.text == nullptr) continue;
    std::size_t at = slot.hash & mask;
    while (slots[at].text != nullptr) at = (at + 1) & mask;
    slots[at] = slot;
  }
  slots_.swap(slots);
}

}  // namespace vela::text

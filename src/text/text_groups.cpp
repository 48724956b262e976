#include "text/text_groups.h"

#include <cstring>

namespace vela::text {
namespace {

constexpr std::size_t kFirstSlots = 64;
constexpr std::size_t kWord = sizeof(std::uint64_t);

std::uint64_t Word(const char* bytes, std::size_t size = kWord) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, size);
  return word;
}

// All of a text that is shorter than a word.
std::uint64_t ShortWord(std::string_view text) {
  const std::size_t size = text.size();
  if (size >= kWord / 2) {
    return Word(text.data(), kWord / 2) | Word(text.data() + size - kWord / 2, kWord / 2) << 32;
  }
  const auto byte = [&](std::size_t i) {
    return std::uint64_t{static_cast<unsigned char>(text[i])};
  };
  return size == 0 ? 0 : byte(0) | byte(size / 2) << 8 | byte(size - 1) << 16;
}

std::uint64_t Mix(std::uint64_t hash, std::uint64_t word) {
  hash = (hash ^ word) * 0x9E3779B97F4A7C15;
  return hash ^ hash >> 32;
}

}  // namespace

TextGroups::TextGroups() : slots_(kFirstSlots) {}

TextGroups::Key::Key(std::string_view whole) : text(whole) {
  const bool is_short = text.size() < kWord;
  first = is_short ? ShortWord(text) : Word(text.data());
  last = is_short ? 0 : Word(text.data() + text.size() - kWord);
}

std::uint32_t TextGroups::Key::Hash() const {
  std::uint64_t hash = Mix(text.size(), first);
  for (std::size_t at = kWord; at + kWord < text.size(); at += kWord) {
    hash = Mix(hash, Word(text.data() + at));
  }
  return static_cast<std::uint32_t>(Mix(Mix(hash, last), 0));
}

TextGroups::Membership TextGroups::Add(const Key& key, std::uint32_t hash) {
  std::size_t at = hash & Mask();
  for (; slots_[at].group != kNone; at = (at + 1) & Mask()) {
    const Slot slot = slots_[at];
    if (slot.hash == hash && groups_[slot.group] == key) return {slot.group, false};
  }
  const auto group = static_cast<std::uint32_t>(groups_.size());
  groups_.push_back(key);
  slots_[at] = {hash, group};
  if (4 * groups_.size() > 3 * slots_.size()) Grow();
  return {group, true};
}

void TextGroups::Grow() {
  std::vector<Slot> slots(slots_.size() * 2);
  const std::size_t mask = slots.size() - 1;
  for (const Slot& slot : slots_) {
    if (slot.group == kNone) continue;
    std::size_t at = slot.hash & mask;
    while (slots[at].group != kNone) at = (at + 1) & mask;
    slots[at] = slot;
  }
  slots_.swap(slots);
}

}  // namespace vela::text

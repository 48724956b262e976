#include "host/object_registry.h"

#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <new>
#include <utility>

#include "host/never_destroyed.h"

namespace vela::host {
namespace {

// Open addressing with linear probing, at most half full; deletion moves the followers of the hole
// back.
class PointerSet {
 public:
  void Add(const void* pointer) {
    if (2 * (count_ + 1) > capacity_) Grow();
    const void*& slot = slots_[FindSlot(pointer)];
    if (slot) return;
    slot = pointer;
    ++count_;
  }

  void Remove(const void* pointer) {
    if (count_ == 0) return;
    std::size_t hole = FindSlot(pointer);
    if (!slots_[hole]) return;
    --count_;
    for (std::size_t i = Next(hole); slots_[i]; i = Next(i)) {
      const std::size_t distance_from_home = (i - Home(slots_[i])) & (capacity_ - 1);
      const std::size_t distance_from_hole = (i - hole) & (capacity_ - 1);
      if (distance_from_home >= distance_from_hole) {
        slots_[hole] = slots_[i];
        hole = i;
      }
    }
    slots_[hole] = nullptr;
  }

  bool Contains(const void* pointer) const {
    return count_ > 0 && pointer && slots_[FindSlot(pointer)] != nullptr;
  }

  std::size_t Count() const { return count_; }

 private:
  static constexpr std::size_t kFirstCapacity = 64;

  std::size_t Next(std::size_t i) const { return (i + 1) & (capacity_ - 1); }

  std::size_t Home(const void* pointer) const {
    const auto bits = reinterpret_cast<std::uintptr_t>(pointer);
    return static_cast<std::size_t>((bits * 0x9E3779B97F4A7C15u) >> 20) & (capacity_ - 1);
  }

  // Where the pointer is, or the free slot where it would go.
  std::size_t FindSlot(const void* pointer) const {
    std::size_t i = Home(pointer);
    while (slots_[i] && slots_[i] != pointer) i = Next(i);
    return i;
  }

  void Grow() {
    const std::size_t old_capacity = capacity_;
    const std::size_t new_capacity = old_capacity ? 2 * old_capacity : kFirstCapacity;
    void* memory = std::calloc(new_capacity, sizeof(void*));
    if (!memory) throw std::bad_alloc();
    const void** const old_slots = std::exchange(slots_, static_cast<const void**>(memory));
    capacity_ = new_capacity;
    for (std::size_t i = 0; i < old_capacity; ++i) {
      if (old_slots[i]) slots_[FindSlot(old_slots[i])] = old_slots[i];
    }
    std::free(old_slots);
  }

  const void** slots_ = nullptr;
  std::size_t capacity_ = 0;
  std::size_t count_ = 0;
};

struct Registry {
  std::mutex mutex;
  PointerSet live;
};

Registry& TheRegistry() {
  static NeverDestroyed<Registry> registry;
  return registry.value;
}

}  // namespace

void AddLiveObject(const void* object) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  registry.live.Add(object);
}

void RemoveLiveObject(const void* object) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  registry.live.Remove(object);
}

bool IsLiveObject(const void* object) {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  return registry.live.Contains(object);
}

std::size_t CountLiveObjects() {
  Registry& registry = TheRegistry();
  const std::lock_guard lock(registry.mutex);
  return registry.live.Count();
}

}  // namespace vela::host

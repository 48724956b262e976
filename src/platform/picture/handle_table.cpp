#include "platform/picture/handle_table.h"

#if !defined(_WIN32)

#include <cstdint>
#include <mutex>
#include <unordered_map>

namespace vela::picture {
namespace {

using Number = std::uint32_t;

struct Table {
  std::mutex mutex;
  std::unordered_map<Number, std::shared_ptr<DrawingObject>> objects;
  Number last = 0;

  // Numbers come back only when all others were used, so that a stale handle stays unknown.
  Number NextNumber() {
    constexpr Number kMost = 0x7FFFFFFF;
    do {
      last = last == kMost ? 1 : last + 1;
    } while (objects.contains(last));
    return last;
  }
};

// Outlives every other static object: some of them own pictures.
Table& TheTable() {
  static Table* const table = new Table;
  return *table;
}

Number NumberOf(const void* handle) {
  const auto value = reinterpret_cast<std::uintptr_t>(handle);
  return value == static_cast<Number>(value) ? static_cast<Number>(value) : 0;
}

}  // namespace

void* AddHandle(std::shared_ptr<DrawingObject> object) noexcept try {
  Table& table = TheTable();
  const std::lock_guard lock(table.mutex);
  const Number number = table.NextNumber();
  table.objects.emplace(number, std::move(object));
  return reinterpret_cast<void*>(std::uintptr_t{number});
} catch (...) {
  return nullptr;
}

std::shared_ptr<DrawingObject> FindHandle(const void* handle) noexcept {
  Table& table = TheTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.objects.find(NumberOf(handle));
  return found == table.objects.end() ? nullptr : found->second;
}

std::shared_ptr<DrawingObject> TakeHandle(const void* handle, DWORD kind) noexcept {
  Table& table = TheTable();
  const std::lock_guard lock(table.mutex);
  const auto found = table.objects.find(NumberOf(handle));
  if (found == table.objects.end() || found->second->kind != kind) return nullptr;
  std::shared_ptr<DrawingObject> object = std::move(found->second);
  table.objects.erase(found);
  return object;
}

}  // namespace vela::picture

DWORD GetObjectType(HGDIOBJ object) {
  const auto found = vela::picture::FindHandle(object);
  return found != nullptr && found->kind != vela::picture::kIconKind ? found->kind : 0;
}

BOOL DeleteObject(HGDIOBJ object) {
  using vela::picture::TakeHandle;
  return TakeHandle(object, OBJ_BITMAP) != nullptr || TakeHandle(object, OBJ_PEN) != nullptr;
}

#endif

// What drawing handles stand for, and the table that gives the handles out.
#pragma once

#if !defined(_WIN32)

#include <memory>

#include "platform/picture.h"

namespace vela::picture {

// Not told by GetObjectType: an icon is no drawing object.
inline constexpr DWORD kIconKind = 0x100;

struct DrawingObject {
  explicit DrawingObject(DWORD object_kind) : kind(object_kind) {}
  virtual ~DrawingObject() = default;
  DrawingObject(const DrawingObject&) = delete;
  DrawingObject& operator=(const DrawingObject&) = delete;

  const DWORD kind;  // OBJ_... or kIconKind
};

// A new handle of the object, or null when there is no memory for it. From any thread, as the rest.
void* AddHandle(std::shared_ptr<DrawingObject> object) noexcept;
// The object, or null for what is no handle. It lives on while it is held, even if it is deleted.
std::shared_ptr<DrawingObject> FindHandle(const void* handle) noexcept;
// Takes the handle back; null for what is no handle of that kind.
std::shared_ptr<DrawingObject> TakeHandle(const void* handle, DWORD kind) noexcept;

template <class Object>
std::shared_ptr<Object> Find(const void* handle) noexcept {
  return std::dynamic_pointer_cast<Object>(FindHandle(handle));
}

}  // namespace vela::picture

#endif

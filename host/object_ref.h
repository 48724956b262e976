// Owning reference to a script object.
#pragma once

#include <utility>

#include "frame/interface/script_object.h"

namespace vela::host {

// Holds one reference of the object, or none. As cheap as the pointer apart from the count.
class ObjectRef {
 public:
  ObjectRef() = default;
  explicit ObjectRef(CScriptVelaObject* object) : object_(object) {
    if (object_) object_->AddRef();
  }
  ObjectRef(const ObjectRef& other) : ObjectRef(other.object_) {}
  ObjectRef(ObjectRef&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
  ObjectRef& operator=(ObjectRef other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  ~ObjectRef() {
    if (object_) object_->Release();
  }

  CScriptVelaObject* Get() const { return object_; }
  CScriptVelaObject* operator->() const { return object_; }
  CScriptVelaObject& operator*() const { return *object_; }
  explicit operator bool() const { return object_ != nullptr; }
  friend bool operator==(const ObjectRef& a, const ObjectRef& b) = default;

 private:
  CScriptVelaObject* object_ = nullptr;
};

}  // namespace vela::host

#pragma once

#include "frame/interface/indices.h"
#include "frame/interface/object_argument.h"
#include "host/object_ref.h"
#include "tesselc/run/node.h"

namespace tesselc {

// The value of an expression whose type is an object type: an object, or the part of one (an item
// of an array of objects, a row, a layer) that the indices address.
struct ObjectValue {
  CScriptVelaObject* object = nullptr;
  MSOINDICES at;
  vela::host::ObjectRef keep;  // holds a temporary; empty for what a variable holds

  ObjectValue() = default;
  explicit ObjectValue(CScriptVelaObject* borrowed, const MSOINDICES& part = {})
      : object(borrowed), at(part) {}
  explicit ObjectValue(vela::host::ObjectRef owned) : object(owned.Get()), keep(std::move(owned)) {}

  const MSOINDICES* At() const { return at.kind == 0 ? nullptr : &at; }
  tagMSOOBJVECT AsOperand() const { return {object, object->GetTypeID(), at}; }
};

// What a parameter or variable that refers to an object holds; trivially copied in a frame.
struct ObjectReference {
  CScriptVelaObject* object;
  MSOINDICES at;
};

// Where an object variable lives: an owned pointer at an offset of the frame or at a fixed address,
// or an ObjectReference at an offset.
struct ObjectPlace {
  enum class Mode : std::uint8_t { kLocal, kGlobal, kReference };
  Mode mode = Mode::kLocal;
  std::uint32_t offset = 0;
  CScriptVelaObject** address = nullptr;

  static ObjectPlace Local(std::uint32_t offset) { return {Mode::kLocal, offset, nullptr}; }
  static ObjectPlace Global(void* address) {
    return {Mode::kGlobal, 0, static_cast<CScriptVelaObject**>(address)};
  }
  static ObjectPlace Reference(std::uint32_t offset) { return {Mode::kReference, offset, nullptr}; }

  // The pointer of an owning place.
  CScriptVelaObject*& Slot(Frame& frame) const {
    return mode == Mode::kGlobal ? *address : frame.At<CScriptVelaObject*>(offset);
  }
};

}  // namespace tesselc

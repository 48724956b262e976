// Creation of objects from type words.
#pragma once

#include "frame/interface/script_object.h"

namespace vela {

// What VELA_CRT_OBJ was asked for.
struct CreationRequest {
  unsigned type_word;
  void** args;
  unsigned n;

  unsigned TypeId() const { return type_word & kTypeIdMask; }
  bool Has(unsigned flags) const { return (type_word & flags) != 0; }
};

// The new object, owned by the caller, or null for a type word that names none. Throws
// std::bad_alloc.
CScriptVelaObject* CreateObject(const CreationRequest& request);
// The same for the matrix part of the type words.
CScriptVelaObject* CreateMatrix(const CreationRequest& request);

}  // namespace vela

#include "tesselc/compile/scope.h"

#include <utility>

#include "frame/interface/script_object.h"

namespace tesselc {

Globals::~Globals() { ReleaseObjects(); }

void* Globals::Allocate(bool owns_object) {
  Cell& cell = cells_.emplace_back();
  cell.owns_object = owns_object;
  return cell.bytes.data();
}

void Globals::ReleaseObjects() {
  for (auto cell = cells_.rbegin(); cell != cells_.rend(); ++cell) {
    if (!cell->owns_object) continue;
    auto*& object = *reinterpret_cast<CScriptVelaObject**>(cell->bytes.data());
    if (CScriptVelaObject* old = std::exchange(object, nullptr)) old->Release();
  }
}

}  // namespace tesselc

#include "tesselc/run/number_types.h"

namespace tesselc {
namespace {

template <class... Rows>
unsigned IdOf(TypeName name, ScalarRows<Rows...>) {
  unsigned id = kTypeNone;
  ((Rows::kName == name ? void(id = Rows::kTypeId) : void()), ...);
  return id;
}

template <class... Rows>
TypeName NameOf(unsigned type_id, ScalarRows<Rows...>) {
  TypeName name = TypeName::kVoid;
  ((Rows::kTypeId == type_id ? void(name = Rows::kName) : void()), ...);
  return name;
}

}  // namespace

unsigned ScalarTypeId(TypeName name) { return IdOf(name, AllScalarRows()); }
TypeName ScalarOfTypeId(unsigned type_id) { return NameOf(type_id, AllScalarRows()); }

}  // namespace tesselc

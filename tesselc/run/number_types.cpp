#include "tesselc/run/number_types.h"

#include <iterator>

namespace tesselc {
namespace {

struct Row {
  TypeName name;
  unsigned type_id;
};
constexpr Row kRows[] = {
    {TypeName::kChar, kTypeChar},
    {TypeName::kUchar, kTypeUnsignedChar},
    {TypeName::kShort, kTypeShort},
    {TypeName::kUshort, kTypeUnsignedShort},
    {TypeName::kInt, kTypeInt},
    {TypeName::kUint, kTypeUnsignedInt},
    {TypeName::kFloat, kTypeFloat},
    {TypeName::kDouble, kTypeDouble},
    {TypeName::kInt64, kTypeInt64},
    {TypeName::kUint64, kTypeUnsignedInt64},
    {TypeName::kComplex, kTypeComplex},
    {TypeName::kPoint, kTypePointInt},
    {TypeName::kFpoint, kTypePointDouble},
    {TypeName::kFpoint3d, kTypePoint3D},
};

}  // namespace

unsigned ScalarTypeId(TypeName name) {
  for (const Row& row : kRows) {
    if (row.name == name) return row.type_id;
  }
  return kTypeNone;
}

TypeName ScalarOfTypeId(unsigned type_id) {
  for (const Row& row : kRows) {
    if (row.type_id == type_id) return row.name;
  }
  return TypeName::kVoid;
}

}  // namespace tesselc

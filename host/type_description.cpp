#include "host/type_description.h"

#include <array>
#include <cfloat>
#include <concepts>
#include <cstdint>
#include <limits>

#include "frame/interface/complex.h"
#include "frame/interface/host_services.h"
#include "frame/interface/type_words.h"
#include "platform/automation.h"

namespace vela::host {
namespace {

struct TypeDescription {
  unsigned id;
  const char* name;
  unsigned size;
  WORD variant_type = VT_EMPTY;  // of the simple types only
  double smallest = 0;
  double largest = 0;
};

template <class T>
constexpr TypeDescription Simple(unsigned id, const char* name, WORD variant_type) {
  using Limits = std::numeric_limits<T>;
  return {id,
          name,
          sizeof(T),
          variant_type,
          static_cast<double>(Limits::lowest()),
          static_cast<double>(Limits::max())};
}

constexpr TypeDescription kTypes[] = {
    Simple<char>(kTypeCharAlias, "char", VT_I1),
    Simple<char>(kTypeChar, "char", VT_I1),
    Simple<unsigned char>(kTypeUnsignedChar, "unsigned char", VT_UI1),
    Simple<short>(kTypeShort, "short", VT_I2),
    Simple<unsigned short>(kTypeUnsignedShort, "unsigned short", VT_UI2),
    Simple<int>(kTypeInt, "int", VT_I4),
    Simple<unsigned>(kTypeUnsignedInt, "unsigned int", VT_UI4),
    Simple<float>(kTypeFloat, "float", VT_R4),
    Simple<double>(kTypeDouble, "double", VT_R8),
    Simple<std::int64_t>(kTypeInt64, "__int64", VT_I8),
    Simple<std::uint64_t>(kTypeUnsignedInt64, "unsigned __int64", VT_UI8),
    {kTypeComplex, "complex", sizeof(OneTCcomplex)},
    {kTypeComplexOfDouble, "complex", sizeof(OneTCcomplex)},
    {kTypePointInt, "point", sizeof(PointInt)},
    {kTypePointDouble, "fpoint", sizeof(PointDouble)},
    {kTypePoint3D, "fpoint3d", sizeof(Point3D)},
    {kTypeVectorBase, "vectorbase", 0},
    {kTypeVectorBaseAlias, "vectorbase", 0},
    {kTypeMatrixBase, "matrixbase", 0},
    {kTypeCategorical, "Categorical", 0},
    {kTypeCategoricalAlias, "Categorical", 0},
    {kTypeString, "string", sizeof(char*)},
    {kTypeFile, "file", 0},
    {kTypeStdioFile, "stdioFile", 0},
    {kTypeReference, "reference", sizeof(void*)},
    {kTypePointer, "pointer", sizeof(void*)},
    {kTypeVariant, "_VARIANT", sizeof(VARIANT)},
    {kTypePicture, "Picture", sizeof(void*)},
};

// One entry per type id, so that a lookup is an index.
constexpr auto kTypeOfId = [] {
  std::array<const TypeDescription*, kLastTypeId + 1> types{};
  for (const TypeDescription& type : kTypes) types[type.id] = &type;
  return types;
}();

const TypeDescription* Describe(unsigned type_id) {
  return type_id < kTypeOfId.size() ? kTypeOfId[type_id] : nullptr;
}

}  // namespace

const char* TypeName(unsigned type_id) {
  const TypeDescription* type = Describe(type_id);
  return type ? type->name : "object";
}

const char* TypeWordName(unsigned type_word) {
  if (type_word & kFlagAnyMatrix) return "matrix";
  if (!(type_word & kFlagAnyVector)) return TypeName(type_word & kTypeIdMask);
  return (type_word & kTypeIdMask) == kTypeString ? "StringArray" : "vector";
}

bool IsIntegralType(unsigned type_id) {
  const TypeDescription* type = Describe(type_id);
  return type && type->variant_type != VT_EMPTY && type_id != kTypeFloat && type_id != kTypeDouble;
}

bool IsPlainType(unsigned type_id) {
  const TypeDescription* type = Describe(type_id);
  return type &&
         (type->variant_type != VT_EMPTY || (type_id >= kTypeComplex && type_id <= kTypePoint3D));
}

bool IsContainerWord(unsigned type_word) {
  return (type_word & (kFlagAnyVector | kFlagAnyMatrix)) != 0;
}

}  // namespace vela::host

using vela::host::Describe;

bool GetDataTypeRange(unsigned type_id, double& smallest, double& largest) {
  const auto* type = Describe(type_id);
  if (!type || type->variant_type == VT_EMPTY) return false;
  smallest = type->smallest;
  largest = type->largest;
  return true;
}

WORD GetVariantTypeFromSimpleType(unsigned type_id) {
  const auto* type = Describe(type_id);
  return type ? type->variant_type : static_cast<WORD>(VT_EMPTY);
}

unsigned PLTTypeToSizeOf(unsigned type_id) {
  const auto* type = Describe(type_id);
  return type ? type->size : 0;
}

unsigned GetVectorBasicTypeFromSafeArrayType(WORD variant_type) {
  switch (variant_type & VT_TYPEMASK) {
    case VT_I1:
      return kTypeChar;
    case VT_UI1:
      return kTypeUnsignedChar;
    case VT_I2:
    case VT_BOOL:
      return kTypeShort;
    case VT_UI2:
      return kTypeUnsignedShort;
    case VT_I4:
    case VT_INT:
      return kTypeInt;
    case VT_UI4:
    case VT_UINT:
      return kTypeUnsignedInt;
    case VT_I8:
      return kTypeInt64;
    case VT_UI8:
      return kTypeUnsignedInt64;
    case VT_R4:
      return kTypeFloat;
    case VT_R8:
    case VT_DATE:
      return kTypeDouble;
    case VT_BSTR:
      return kTypeString;
    case VT_VARIANT:
      return kTypeVariant;
    default:
      return kTypeNone;
  }
}

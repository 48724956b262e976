#include "tesselc/compile/static_type.h"

#include "tesselc/diagnostic.h"

namespace tesselc {

bool StaticType::IsVector() const {
  if (is_array) return false;
  switch (name) {
    case TypeName::kVector:
    case TypeName::kVectorBase:
    case TypeName::kDataset:
    case TypeName::kCurve:
    case TypeName::kCategorical:
      return true;
    default:
      return false;
  }
}

bool StaticType::IsMatrix() const {
  return !is_array && (name == TypeName::kMatrix || name == TypeName::kMatrixBase ||
                       name == TypeName::kMatrixObject);
}

StaticType Resolve(const Type& type) {
  if (type.pointers > 0) throw ScriptMistake(type.range, "pointers are not supported yet");
  StaticType resolved{type.name};
  if (IsTemplate(type.name)) resolved.element = type.element;
  if (type.name == TypeName::kCategorical) resolved.element = TypeName::kInt;
  return resolved;
}

std::string Spelling(const StaticType& type) {
  if (type.is_null) return "NULL";
  Type written;
  written.name = type.name;
  if (type.element != TypeName::kVoid) written.element = type.element;
  return Spelling(written) + (type.is_array ? "[]" : "");
}

Carrier CarrierOf(const StaticType& type) {
  if (type.IsVoid() || type.IsScalar()) return type.name;
  return type.IsString() ? kTextCarrier : kObjectCarrier;
}

StaticType ElementType(const StaticType& container) {
  if (container.IsString()) return StaticType::Of(TypeName::kChar);
  if (container.name == TypeName::kStringArray) return StaticType::Of(TypeName::kString);
  return StaticType::Of(container.element == TypeName::kVoid ? TypeName::kDouble
                                                             : container.element);
}

namespace {

unsigned TypeWord(const StaticType& type) {
  switch (type.name) {
    case TypeName::kVector:
      return ScalarTypeId(type.element) | kFlagVector;
    case TypeName::kMatrix:
      return ScalarTypeId(type.element) | kFlagMatrix;
    case TypeName::kDataset:
      return ScalarTypeId(type.element) | kFlagDataset;
    case TypeName::kCurve:
      return ScalarTypeId(type.element) | kFlagCurve;
    case TypeName::kMatrixObject:
      return ScalarTypeId(type.element) | kFlagMatrixObject;
    case TypeName::kVectorBase:
      return kTypeVectorBase;
    case TypeName::kMatrixBase:
      return kTypeMatrixBase;
    case TypeName::kCategorical:
      return kTypeCategorical;
    case TypeName::kString:
      return kTypeString;
    case TypeName::kStringArray:
      return kTypeString | kFlagVector;
    case TypeName::kFile:
      return kTypeFile;
    case TypeName::kStdioFile:
      return kTypeStdioFile;
    case TypeName::kVariant:
      return kTypeVariant;
    case TypeName::kPicture:
      return kTypePicture;
    case TypeName::kDeviceContext:
      return kTypeDeviceContext;
    default:
      return ScalarTypeId(type.name);
  }
}

int Rank(TypeName number) {
  switch (number) {
    case TypeName::kDouble:
      return 5;
    case TypeName::kFloat:
      return 4;
    case TypeName::kUint64:
      return 3;
    case TypeName::kInt64:
      return 2;
    case TypeName::kUint:
      return 1;
    default:
      return 0;
  }
}

}  // namespace

ObjectType ObjectTypeOf(const StaticType& type) { return {TypeWord(type), Spelling(type.Item())}; }

bool CanReferTo(const StaticType& parameter, const StaticType& argument) {
  if (parameter == argument) return true;
  if (parameter.is_array || argument.is_array) return false;
  const bool same_element = parameter.element == argument.element;
  switch (parameter.name) {
    case TypeName::kVectorBase:
      return argument.IsVector() || argument.name == TypeName::kStringArray;
    case TypeName::kVector:
      return argument.IsVector() && same_element;
    case TypeName::kDataset:
      return argument.name == TypeName::kCurve && same_element;
    case TypeName::kMatrixBase:
      return argument.IsMatrix();
    case TypeName::kMatrix:
      return argument.IsMatrix() && same_element;
    case TypeName::kFile:
      return argument.name == TypeName::kStdioFile;
    default:
      return false;
  }
}

bool CanBeArray(const StaticType& item) {
  switch (item.name) {
    case TypeName::kVector:
    case TypeName::kMatrix:
    case TypeName::kString:
    case TypeName::kStringArray:
    case TypeName::kVariant:
    case TypeName::kPicture:
      return true;
    default:
      return item.IsScalar();
  }
}

TypeName Promoted(TypeName number) { return Rank(number) == 0 ? TypeName::kInt : number; }

TypeName CommonNumber(TypeName a, TypeName b) {
  a = Promoted(a);
  b = Promoted(b);
  return Rank(a) >= Rank(b) ? a : b;
}

}  // namespace tesselc

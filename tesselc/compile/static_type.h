#pragma once

#include <string>

#include "tesselc/run/carrier.h"
#include "tesselc/run/objects.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

// The type of an expression, as far as it is known before the script runs; references are gone.
struct StaticType {
  TypeName name = TypeName::kVoid;
  TypeName element = TypeName::kVoid;  // of a template type, otherwise kVoid
  bool is_array = false;               // T a[n]
  bool is_null = false;                // NULL

  static StaticType Of(TypeName scalar) { return {scalar}; }
  static StaticType Null() { return {TypeName::kVoid, TypeName::kVoid, false, true}; }

  bool operator==(const StaticType&) const = default;

  bool IsVoid() const { return name == TypeName::kVoid && !is_null; }
  bool IsNumber() const { return !is_array && tesselc::IsNumber(name); }
  bool IsInteger() const { return !is_array && tesselc::IsInteger(name); }
  bool IsComplex() const { return !is_array && name == TypeName::kComplex; }
  bool IsPoint() const { return !is_array && tesselc::IsPoint(name); }
  bool IsScalar() const { return !is_array && tesselc::IsScalar(name); }
  bool IsString() const { return !is_array && name == TypeName::kString; }
  bool IsVariant() const { return !is_array && name == TypeName::kVariant; }
  // One-dimensional containers of scalars, and two-dimensional ones, whatever they are bound to.
  bool IsVector() const;
  bool IsMatrix() const;
  bool IsContainer() const { return IsVector() || IsMatrix(); }
  // Kept in an object rather than in the frame.
  bool IsObject() const { return !IsVoid() && !is_null && !IsScalar(); }
  // The type of one item of an array.
  StaticType Item() const { return {name, element}; }
};

// What the declared type of a variable, parameter or result stands for. Throws a ScriptMistake for
// what cannot be used yet.
StaticType Resolve(const Type& type);
std::string Spelling(const StaticType& type);
// How a value of the type is handed over by what computes it: strings as texts.
Carrier CarrierOf(const StaticType& type);
// The type of one element of a container, a text or a text array.
StaticType ElementType(const StaticType& container);
ObjectType ObjectTypeOf(const StaticType& type);

// Whether a reference to `parameter` can refer to an object of type `argument`.
bool CanReferTo(const StaticType& parameter, const StaticType& argument);

// Whether the objects of a type can be arrays of several.
bool CanBeArray(const StaticType& item);

// How the language's rules for arithmetic widen numbers.
TypeName Promoted(TypeName number);
TypeName CommonNumber(TypeName a, TypeName b);

}  // namespace tesselc

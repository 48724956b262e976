// The bridge from a type's name in the tree to the C++ type that holds its values.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "frame/interface/complex.h"
#include "frame/interface/point.h"
#include "frame/interface/type_words.h"
#include "tesselc/syntax_tree.h"

namespace tesselc {

// Calls f(std::type_identity<T>()) for the C++ type of a number type.
template <class F>
decltype(auto) WithNumber(TypeName name, F&& f) {
  switch (name) {
    case TypeName::kChar:
      return f(std::type_identity<char>());
    case TypeName::kUchar:
      return f(std::type_identity<unsigned char>());
    case TypeName::kShort:
      return f(std::type_identity<short>());
    case TypeName::kUshort:
      return f(std::type_identity<unsigned short>());
    case TypeName::kUint:
      return f(std::type_identity<unsigned>());
    case TypeName::kFloat:
      return f(std::type_identity<float>());
    case TypeName::kDouble:
      return f(std::type_identity<double>());
    case TypeName::kInt64:
      return f(std::type_identity<std::int64_t>());
    case TypeName::kUint64:
      return f(std::type_identity<std::uint64_t>());
    default:
      return f(std::type_identity<int>());
  }
}

// The types that arithmetic is done in, after promotion.
template <class F>
decltype(auto) WithArithmetic(TypeName name, F&& f) {
  switch (name) {
    case TypeName::kUint:
      return f(std::type_identity<unsigned>());
    case TypeName::kFloat:
      return f(std::type_identity<float>());
    case TypeName::kDouble:
      return f(std::type_identity<double>());
    case TypeName::kInt64:
      return f(std::type_identity<std::int64_t>());
    case TypeName::kUint64:
      return f(std::type_identity<std::uint64_t>());
    default:
      return f(std::type_identity<int>());
  }
}

// Every type whose values live in the frame itself: numbers, complex, points.
template <class F>
decltype(auto) WithScalar(TypeName name, F&& f) {
  switch (name) {
    case TypeName::kComplex:
      return f(std::type_identity<OneTCcomplex>());
    case TypeName::kPoint:
      return f(std::type_identity<PointInt>());
    case TypeName::kFpoint:
      return f(std::type_identity<PointDouble>());
    case TypeName::kFpoint3d:
      return f(std::type_identity<Point3D>());
    default:
      return WithNumber(name, std::forward<F>(f));
  }
}

inline bool IsPoint(TypeName name) {
  return name == TypeName::kPoint || name == TypeName::kFpoint || name == TypeName::kFpoint3d;
}
inline bool IsScalar(TypeName name) {
  return IsNumber(name) || name == TypeName::kComplex || IsPoint(name);
}
inline bool IsFloating(TypeName name) {
  return name == TypeName::kFloat || name == TypeName::kDouble;
}
inline bool IsInteger(TypeName name) { return IsNumber(name) && !IsFloating(name); }

inline std::uint32_t ScalarSize(TypeName name) {
  return WithScalar(name,
                    [](auto t) -> std::uint32_t { return sizeof(typename decltype(t)::type); });
}

// The type id of a scalar type.
unsigned ScalarTypeId(TypeName name);
// The scalar type of a type id; kVoid for an id that names none.
TypeName ScalarOfTypeId(unsigned type_id);

}  // namespace tesselc

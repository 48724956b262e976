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

template <TypeName kRowName, class T, unsigned kRowId>
struct ScalarRow {
  static constexpr TypeName kName = kRowName;
  static constexpr unsigned kTypeId = kRowId;
  using Value = T;
};
template <class... Rows>
struct ScalarRows {};

using IntRow = ScalarRow<TypeName::kInt, int, kTypeInt>;
// The types that arithmetic is done in, after promotion; the others; and what is no number.
using ArithmeticRows = ScalarRows<IntRow, ScalarRow<TypeName::kUint, unsigned, kTypeUnsignedInt>,
                                  ScalarRow<TypeName::kFloat, float, kTypeFloat>,
                                  ScalarRow<TypeName::kDouble, double, kTypeDouble>,
                                  ScalarRow<TypeName::kInt64, std::int64_t, kTypeInt64>,
                                  ScalarRow<TypeName::kUint64, std::uint64_t, kTypeUnsignedInt64>>;
using NarrowRows = ScalarRows<ScalarRow<TypeName::kChar, char, kTypeChar>,
                              ScalarRow<TypeName::kUchar, unsigned char, kTypeUnsignedChar>,
                              ScalarRow<TypeName::kShort, short, kTypeShort>,
                              ScalarRow<TypeName::kUshort, unsigned short, kTypeUnsignedShort>>;
using CompoundRows = ScalarRows<ScalarRow<TypeName::kComplex, OneTCcomplex, kTypeComplex>,
                                ScalarRow<TypeName::kPoint, PointInt, kTypePointInt>,
                                ScalarRow<TypeName::kFpoint, PointDouble, kTypePointDouble>,
                                ScalarRow<TypeName::kFpoint3d, Point3D, kTypePoint3D>>;

template <class... A, class... B>
ScalarRows<A..., B...> Join(ScalarRows<A...>, ScalarRows<B...>);
using NumberRows = decltype(Join(NarrowRows(), ArithmeticRows()));
using AllScalarRows = decltype(Join(CompoundRows(), NumberRows()));

template <class T, class... Rows>
constexpr unsigned TypeIdIn(ScalarRows<Rows...>) {
  return ((std::is_same_v<T, typename Rows::Value> ? Rows::kTypeId : 0) + ...);
}
// The type id of the scalar type that a C++ type holds.
template <class T>
inline constexpr unsigned kTypeIdOf = TypeIdIn<T>(AllScalarRows());

// Calls f(std::type_identity<T>()) for the C++ type of a row; int for a name that is in none.
template <class F>
decltype(auto) WithRow(TypeName, ScalarRows<>, F&& f) {
  return f(std::type_identity<int>());
}
template <class Row, class... Rest, class F>
decltype(auto) WithRow(TypeName name, ScalarRows<Row, Rest...>, F&& f) {
  if (name == Row::kName) return f(std::type_identity<typename Row::Value>());
  return WithRow(name, ScalarRows<Rest...>(), std::forward<F>(f));
}

// The same for a number type, for a type that arithmetic is done in, and for every type whose
// values live in the frame itself.
template <class F>
decltype(auto) WithNumber(TypeName name, F&& f) {
  return WithRow(name, NumberRows(), std::forward<F>(f));
}
template <class F>
decltype(auto) WithArithmetic(TypeName name, F&& f) {
  return WithRow(name, ArithmeticRows(), std::forward<F>(f));
}
template <class F>
decltype(auto) WithScalar(TypeName name, F&& f) {
  return WithRow(name, AllScalarRows(), std::forward<F>(f));
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

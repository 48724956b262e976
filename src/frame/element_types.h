// The element types of scalars and containers: the one table that everything per type derives from.
#pragma once

#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "frame/interface/complex.h"
#include "frame/interface/point.h"
#include "frame/interface/type_words.h"
#include "kernel/missing.h"

namespace vela {

template <class T>
struct ElementType {
  using Value = T;
  unsigned type_id;
  const char* name;          // as in a declaration
  const char* display_name;  // as a debugger names a whole vector of it
};

// The types that are used most come first: a lookup tries them in this order.
inline constexpr std::tuple kElementTable{
    ElementType<double>{kTypeDouble, "double", "double"},
    ElementType<int>{kTypeInt, "int", "int"},
    ElementType<float>{kTypeFloat, "float", "float"},
    ElementType<unsigned>{kTypeUnsignedInt, "unsigned int", "unsigned int"},
    ElementType<char>{kTypeChar, "char", "char"},
    ElementType<unsigned char>{kTypeUnsignedChar, "unsigned char", "unsigned char"},
    ElementType<short>{kTypeShort, "short", "short"},
    ElementType<unsigned short>{kTypeUnsignedShort, "unsigned short", "unsigned short"},
    ElementType<std::int64_t>{kTypeInt64, "__int64", "__int64"},
    ElementType<std::uint64_t>{kTypeUnsignedInt64, "unsigned __int64", "unsigned __int64"},
    ElementType<OneTCcomplex>{kTypeComplex, "complex", "complex"},
    ElementType<PointInt>{kTypePointInt, "point", "point"},
    ElementType<PointDouble>{kTypePointDouble, "fpoint", "fpoint"},
    ElementType<Point3D>{kTypePoint3D, "fpoint3d", "fpoint3d"},
};

template <class T>
inline constexpr const ElementType<T>& kElement = std::get<ElementType<T>>(kElementTable);

template <class T>
concept SimpleElement = std::is_arithmetic_v<T>;
template <class T>
concept IntegerElement = std::is_integral_v<T>;
template <class T>
concept FloatingElement = std::is_floating_point_v<T>;
template <class T>
concept ComplexElement = std::is_same_v<T, OneTCcomplex>;
template <class T>
concept PointElement =
    std::is_same_v<T, PointInt> || std::is_same_v<T, PointDouble> || std::is_same_v<T, Point3D>;
// A complex value or a point is missing when one of its parts is.
template <>
inline constexpr std::tuple kernel::kElementParts<OneTCcomplex>{&OneTCcomplex::m_re,
                                                                &OneTCcomplex::m_im};
template <class T, int N>
inline constexpr std::tuple kernel::kElementParts<CTKPointBase<T, N>>{
    &CTKPointBase<T, N>::m_coordinates};

// What a Dataset, Curve or matrix can hold: no points, no 64-bit integers.
template <class T>
concept DatasetElement = ComplexElement<T> ||
    (SimpleElement<T> && (sizeof(T) < 8 || std::is_floating_point_v<T>));

// Calls f.operator()<T>() for every element type, in table order.
template <class F>
constexpr void ForEachElementType(F&& f) {
  std::apply(
      [&](const auto&... row) {
        (f.template operator()<typename std::remove_cvref_t<decltype(row)>::Value>(), ...);
      },
      kElementTable);
}

// Calls f.operator()<T>() for the element type with this id; whether there is one.
template <class F>
bool VisitElementType(unsigned type_id, F&& f) {
  return std::apply(
      [&](const auto&... row) {
        return (
            (row.type_id == type_id &&
             (f.template operator()<typename std::remove_cvref_t<decltype(row)>::Value>(), true)) ||
            ...);
      },
      kElementTable);
}

// As VisitElementType, for the result of f; a default-constructed result when no element type has
// the id.
template <class F>
auto WithElementType(unsigned type_id, F&& f) {
  decltype(f.template operator()<double>()) result{};
  VisitElementType(type_id, [&]<class T>() { result = f.template operator()<T>(); });
  return result;
}

}  // namespace vela

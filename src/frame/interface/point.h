// Point values: N coordinates of type T, stored in order x, y (, z) with no other field.
#pragma once

#include <cstddef>
#include <cstdint>

template <class T, int N>
class CTKPointBase {
  static_assert(N == 2 || N == 3);

 public:
  using Coordinate = T;
  static constexpr int kDimensions = N;

  T m_coordinates[N] = {};

  constexpr T& operator[](std::size_t i) { return m_coordinates[i]; }
  constexpr const T& operator[](std::size_t i) const { return m_coordinates[i]; }
  constexpr bool operator==(const CTKPointBase&) const = default;
};

// Two 32-bit coordinates on every platform.
using PointInt = CTKPointBase<std::int32_t, 2>;
using PointDouble = CTKPointBase<double, 2>;
using Point3D = CTKPointBase<double, 3>;

static_assert(sizeof(PointInt) == 8 && sizeof(PointDouble) == 16 && sizeof(Point3D) == 24);

// What the tests of vectors share: special values, and comparison of elements.
#pragma once

#include <cmath>
#include <limits>

#include "frame/element_value.h"
#include "member_fixture.h"

namespace vela::testing {

using Doubles = std::vector<double>;
using Indices = std::vector<unsigned>;
inline constexpr double kM = kMissingValue;
inline constexpr double kInf = std::numeric_limits<double>::infinity();
inline constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
inline constexpr int kMaxInt = std::numeric_limits<int>::max();
inline constexpr int kMinInt = std::numeric_limits<int>::min();

// Equal bits, so that -0 differs from 0; any NaN is any other.
inline bool Same(double a, double b) {
  return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

inline void ExpectValues(const ObjectRef& vector, const Doubles& expected, int row = 0) {
  const Doubles values = ValuesOf<double>(vector, row);
  ASSERT_EQ(values.size(), expected.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_TRUE(Same(values[i], expected[i])) << i << ": " << values[i] << ", not " << expected[i];
  }
}

// A vector of T with the values, converted.
template <class T>
ObjectRef ConvertedVector(const Doubles& values) {
  std::vector<T> elements;
  for (const double value : values) elements.push_back(ConvertValue<T>(value));
  return VectorOf<T>(elements);
}

// The elements of a vector of any type, as they read as doubles.
inline Doubles AsDoubles(const ObjectRef& vector, int row = 0) {
  MSOINDICES at = MSOINDICES::Object(row);
  int upper = -1;
  EXPECT_EQ(vector->GetUpperBound(&at, upper), 0);
  Doubles values(static_cast<std::size_t>(upper + 1));
  for (int i = 0; i <= upper; ++i) {
    at = MSOINDICES::Object(row).WithElement(i);
    EXPECT_EQ(vector->GetDouble(&at, values[static_cast<std::size_t>(i)]), 0);
  }
  return values;
}

}  // namespace vela::testing

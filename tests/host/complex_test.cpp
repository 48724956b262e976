#include "frame/interface/complex.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <gtest/gtest.h>
#include <limits>
#include <numbers>
#include <ostream>
#include <random>
#include <vector>

#include "frame/interface/missing_value.h"
#include "frame/interface/string_utf8.h"
#include "platform/automation.h"
#include "special_values.h"

static void PrintTo(const OneTCcomplex& z, std::ostream* out) { *out << z.m_re << "," << z.m_im; }

namespace {

constexpr double kMax = std::numeric_limits<double>::max();

std::string ToText(const OneTCcomplex& z) {
  CStringUTF8 text;
  EXPECT_EQ(z.Get(text), 1);
  return text.c_str();
}

TEST(Complex, TextForm) {
  const struct {
    OneTCcomplex value;
    const char* text;
  } rows[] = {
      {{3, 0}, "3.000000"},
      {{0, 2}, "2.000000i"},
      {{0, 0}, "0.000000"},
      {{0, -2}, "-2.000000i"},
      {{1, -2}, "1.000000-2.000000i"},
      {{1, 2}, "1.000000+2.000000i"},
      {{-1.0000004, 1e-9}, "-1.000000+0.000000i"},
      {{0.5, -1e-9}, "0.500000-0.000000i"},
      {{kMissingValue, 1}, "NANUM"},
      {{1, kMissingValue}, "NANUM"},
      {{kMissingValue, 0}, "-0.000000"},
      {{0, kMissingValue}, "-0.000000i"},
      {{kInf, -kInf}, "inf-infi"},
      {{kNaN, -kNaN}, "nan+nani"},
      {{1e22, 0}, "10000000000000000000000.000000"},
  };
  for (const auto& row : rows) EXPECT_EQ(ToText(row.value), row.text);
  EXPECT_EQ(ToText({-kMax, -kMax}).size(), 2u * (1 + 309 + 7) + 1);
}

void ExpectNear(const OneTCcomplex& actual, const OneTCcomplex& expected, double relative) {
  EXPECT_NEAR(actual.m_re, expected.m_re, relative * expected.GetAmplitude());
  EXPECT_NEAR(actual.m_im, expected.m_im, relative * expected.GetAmplitude());
}

TEST(Complex, DivisionStaysInRange) {
  const struct {
    OneTCcomplex a, b, quotient;
  } rows[] = {
      {{1, 2}, {3, 4}, {0.44, 0.08}},
      {{1, 0}, {0, 1}, {0, -1}},
      {{1e308, 1e308}, {1e308, 1e308}, {1, 0}},
      {{1e-308, 1e-308}, {1e-308, -1e-308}, {0, 1}},
      {{1, 1}, {1, 0x1p1023}, {0x1p-1023, -0x1p-1023}},
      {{0x1p1023, 0x1p-1023}, {0x1p677, 0x1p-677}, {0x1p346, -0x1p-1008}},
      {{6, -4}, {2, 0}, {3, -2}},
  };
  for (const auto& row : rows) ExpectNear(row.a / row.b, row.quotient, 4e-16);

  const OneTCcomplex by_zero = OneTCcomplex(-1, 0) / OneTCcomplex(0, 0);
  EXPECT_EQ(by_zero.m_re, -kInf);
  EXPECT_TRUE(std::isnan(by_zero.m_im));
  OneTCcomplex halved(3, -5);
  EXPECT_EQ(halved /= 2, OneTCcomplex(1.5, -2.5));
}

TEST(Complex, DivisionUndoesMultiplication) {
  std::mt19937 random(3);
  std::uniform_real_distribution<double> exponent(-300, 300);
  std::normal_distribution<double> mantissa;
  for (int i = 0; i < 2000; ++i) {
    const double scale = std::exp2(exponent(random));
    const OneTCcomplex a(mantissa(random), mantissa(random));
    const OneTCcomplex b(scale * mantissa(random), scale * mantissa(random));
    ExpectNear(a * b / b, a, 4e-15);
  }
}

TEST(Complex, Power) {
  const struct {
    OneTCcomplex base, exponent, power;
    double relative;
  } rows[] = {
      {{0, 1}, 2, {-1, 0}, 0},
      {{1, 1}, 4, {-4, 0}, 0},
      {{1, 2}, 3, {-11, -2}, 0},
      {{1, 2}, 0, {1, 0}, 0},
      {{0, 2}, -2, {-0.25, 0}, 0},
      {{-8, 0}, 3, {-512, 0}, 0},
      {{2, 0}, 0.5, {std::numbers::sqrt2, 0}, 0},
      {{-4, 0}, 0.5, {0, 2}, 0},
      {{0, 0}, 0, {1, 0}, 0},
      {{0, 0}, {2, 1}, {0, 0}, 0},
      {{-8, 0}, 1.0 / 3, {1, std::numbers::sqrt3}, 4e-16},
      {{0, 1}, {0, 1}, {std::exp(-std::numbers::pi / 2), 0}, 4e-16},
      {{1, 1}, 100, {-0x1p50, 0}, 1e-13},
      {std::numbers::e, {0, std::numbers::pi}, {-1, 0}, 4e-16},
  };
  for (const auto& row : rows) ExpectNear(row.base ^ row.exponent, row.power, row.relative);
  EXPECT_EQ((OneTCcomplex(0, 0) ^ OneTCcomplex(-1, 0)).m_re, kInf);
  EXPECT_TRUE(std::isnan((OneTCcomplex(0, 0) ^ OneTCcomplex(-1, 1)).m_re));
}

TEST(Complex, OrderIsByModulusThenPhaseAndTotal) {
  const std::vector<OneTCcomplex> ascending = {
      {0, 0}, {0.5, 0}, {0, -1}, {1, 0}, {0, 1}, {-1, 0}, {3, -4}, {3, 4}, {-5, 0}, {1e200, 1e200},
  };
  for (std::size_t i = 0; i < ascending.size(); ++i) {
    for (std::size_t j = 0; j < ascending.size(); ++j) {
      const OneTCcomplex &a = ascending[i], &b = ascending[j];
      EXPECT_EQ(a < b, i < j) << i << " " << j;
      EXPECT_EQ(a <= b, i <= j) << i << " " << j;
      EXPECT_EQ(a > b, i > j) << i << " " << j;
      EXPECT_EQ(a >= b, i >= j) << i << " " << j;
      EXPECT_EQ(a == b, i == j) << i << " " << j;
      EXPECT_EQ(a != b, i != j) << i << " " << j;
    }
  }
  EXPECT_FALSE(OneTCcomplex(-1, -0.0) < OneTCcomplex(-1, 0.0));
  EXPECT_FALSE(OneTCcomplex(kNaN, 0) <= OneTCcomplex(kNaN, 0));
  // Parts that modulus and phase are too coarse to tell apart are still ordered one way.
  const OneTCcomplex huge(kMax, kMax), next(kMax, std::nextafter(kMax, 0));
  EXPECT_NE(huge < next, next < huge);
}

TEST(Complex, BecomesPointsAndAnArray) {
  const OneTCcomplex z(2.9, -3e10);
  EXPECT_EQ(PointInt(z), (PointInt{2, std::numeric_limits<LONG>::min()}));
  EXPECT_EQ(PointDouble(z), (PointDouble{2.9, -3e10}));
  EXPECT_EQ(Point3D(z), (Point3D{2.9, -3e10, 0}));
  EXPECT_EQ(PointInt(OneTCcomplex(kNaN, kMissingValue)), (PointInt{0, 0}));
  EXPECT_DOUBLE_EQ(OneTCcomplex(3e200, 4e200).GetAmplitude(), 5e200);

  VARIANT variant;
  VariantInit(&variant);
  ASSERT_EQ(z.GetVariant(variant), 1);
  EXPECT_EQ(variant.vt, VT_ARRAY | VT_R8);
  LONG upper = -1;
  EXPECT_TRUE(SUCCEEDED(SafeArrayGetUBound(variant.parray, 1, &upper)));
  EXPECT_EQ(upper, 1);
  for (LONG i = 0; i < 2; ++i) {
    double part = 0;
    EXPECT_TRUE(SUCCEEDED(SafeArrayGetElement(variant.parray, &i, &part)));
    EXPECT_EQ(part, i == 0 ? z.m_re : z.m_im);
  }
  VariantClear(&variant);
}

}  // namespace

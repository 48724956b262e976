#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

#include "frame/interface/host_services.h"
#include "frame/interface/missing_value.h"
#include "frame/interface/type_base.h"
#include "special_values.h"

namespace {

std::string ToText(double value, const char* unit = nullptr) {
  char buffer[VELAObj::kRealTextSize];
  const int length = VELAObj::RealToString(value, buffer, unit);
  EXPECT_EQ(static_cast<std::size_t>(length), std::strlen(buffer));
  return buffer;
}

std::string FloatText(float value) {
  char buffer[VELAObj::kRealTextSize];
  VELAObj::FloatToString(value, buffer);
  return buffer;
}

TEST(NumberText, DoubleToText) {
  const struct {
    double value;
    const char* text;
  } rows[] = {
      {0, "0"},           {-0.0, "-0"},    {3, "3"},          {-2.5, "-2.5"},   {0.1, "0.1"},
      {0.1 + 0.2, "0.3"}, {1e16, "1e+16"}, {1e100, "1e+100"}, {1e-4, "0.0001"}, {1e-5, "1e-05"},
      {kInf, "inf"},      {-kInf, "-inf"}, {kNaN, "nan"},     {-kNaN, "nan"},
  };
  for (const auto& row : rows) EXPECT_EQ(ToText(row.value), row.text);
  EXPECT_EQ(ToText(1.0 / 3), "0.3333333333333333");
  EXPECT_EQ(ToText(1e15), "1000000000000000");
  EXPECT_EQ(ToText(9007199254740993.0), "9007199254740992");
  EXPECT_EQ(ToText(5e-324), "4.940656458412465e-324");
  EXPECT_EQ(ToText(std::numeric_limits<double>::max()), "1.797693134862316e+308");
  EXPECT_EQ(ToText(kMissingValue), "NANUM");
  EXPECT_EQ(ToText(-kMissingValue), "1.23456789e-300");
}

TEST(NumberText, FloatToTextKnowsNoMissingValue) {
  EXPECT_EQ(FloatText(0.1f), "0.1");
  EXPECT_EQ(FloatText(16777216.0f), "1.677722e+07");
  EXPECT_EQ(FloatText(static_cast<float>(kMissingValue)), "-0");
  EXPECT_EQ(FloatText(static_cast<float>(-kInf)), "-inf");
}

TEST(NumberText, UnitIsAppendedAsFarAsItFits) {
  EXPECT_EQ(ToText(2.5, " mm"), "2.5 mm");
  EXPECT_EQ(ToText(2, std::string(500, 'x').c_str()).size(), VELAObj::kRealTextSize - 1u);
  EXPECT_EQ(VELAObj::RealToString(1, nullptr, nullptr), 0);
}

TEST(NumberText, TextToDouble) {
  const struct {
    const char* text;
    double value;
  } rows[] = {
      {"12", 12},    {"-12.5", -12.5}, {"+3", 3},       {".5", 0.5},       {"5.", 5},
      {"1e3", 1000}, {"1E-3", 0.001},  {"1e400", kInf}, {"-1e400", -kInf}, {"1e-400", 0},
      {"0x1F", 31},  {"0Xff", 255},    {"-0x10", -16},  {"+0x10", 16},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(VELAObj::ParleyStr2double(row.text), row.value) << row.text;
  }
  EXPECT_EQ(VELAObj::ParleyStr2double(" \t\r\n7 \v\f"), 7);
  EXPECT_EQ(VELAObj::ParleyStr2double("0xFFFFFFFFFFFFFFFF"), 18446744073709551616.0);
  EXPECT_EQ(VELAObj::ParleyStr2double("0x1000000000000000000000"), 0x1p84);
  EXPECT_TRUE(std::signbit(VELAObj::ParleyStr2double("-0")));
  for (const char* text : {"inf",    "-Infinity", "nan", "NANUM", "-1.23456789e-300",
                           "-NANUM", "",          "   ", "abc",   "12abc",
                           "1 2",    "1,5",       "0x",  "0xG",   "0x1.8",
                           "0x1p3",  "0x-5",      "--5", "+-5",   "+",
                           "- 5",    "1e",        "."}) {
    EXPECT_EQ(VELAObj::ParleyStr2double(text), kMissingValue) << text;
  }
  EXPECT_EQ(VELAObj::ParleyStr2double(nullptr), kMissingValue);
}

TEST(NumberText, AgreesWithTheCLibraryOnRandomBits) {
  std::mt19937_64 random(7);
  for (int i = 0; i < 20000; ++i) {
    const auto value = std::bit_cast<double>(random());
    if (!std::isfinite(value)) continue;
    char expected[64];
    std::snprintf(expected, sizeof expected, "%.16g", value);
    ASSERT_EQ(ToText(value), expected);
    std::snprintf(expected, sizeof expected, "%.17g", value);
    ASSERT_EQ(VELAObj::ParleyStr2double(expected), value) << expected;
  }
}

TEST(NumberText, IgnoresTheLocale) {
  const std::string saved = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"de_DE.UTF-8", "German", "fr_FR.UTF-8"}) std::setlocale(LC_ALL, name);
  EXPECT_EQ(ToText(1.5), "1.5");
  EXPECT_EQ(VELAObj::ParleyStr2double("1.5"), 1.5);
  std::setlocale(LC_ALL, saved.c_str());
}

TEST(CheckedPower, SucceedsForFiniteRealPowersOnly) {
  const struct {
    double x, y;
    int succeeds;
    double value;
  } rows[] = {
      {2, 10, 1, 1024}, {-2, 3, 1, -8},   {4, 0.5, 1, 2},       {0, 0, 1, 1},
      {2, -2000, 1, 0}, {0, 5, 1, 0},     {-8, 1.0 / 3, 0, 77}, {0, -1, 0, 77},
      {10, 400, 0, 77}, {kNaN, 1, 0, 77}, {kInf, 1, 0, 77},
  };
  for (const auto& row : rows) {
    double value = 77;
    EXPECT_EQ(CheckedPower(row.x, row.y, value), row.succeeds) << row.x << " ^ " << row.y;
    EXPECT_EQ(value, row.value) << row.x << " ^ " << row.y;
  }
}

}  // namespace

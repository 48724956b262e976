// The functions of scripts, and hypot, which complex numbers need, give on every platform what
// data/mathematics.py found on one, or the number next to it.
#include <bit>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "tesselc/run/builtins.h"

namespace tesselc {
namespace {

double Number(const std::string& bits) {
  if (bits == "nan") return std::numeric_limits<double>::quiet_NaN();
  return std::bit_cast<double>(std::uint64_t{std::stoull(bits, nullptr, 16)});
}

std::vector<double> Numbers(std::istream& line) {
  std::vector<double> numbers;
  for (std::string bits; line >> bits;) numbers.push_back(Number(bits));
  return numbers;
}

bool IsNextTo(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
  const bool is_close = a == b || std::nextafter(a, b) == b;
  return is_close && std::signbit(a) == std::signbit(b);
}

TEST(Mathematics, IsTheSameOnEveryPlatform) {
  std::ifstream file(TEST_DATA_DIR "/mathematics.txt");
  std::string text;
  const auto next = [&] {
    std::getline(file, text);
    return std::istringstream(text);
  };
  std::istringstream alone_line = next(), both_line = next();
  const std::vector<double> alone = Numbers(alone_line), both = Numbers(both_line);
  int functions = 0;
  for (; file.peek() != std::char_traits<char>::eof(); ++functions) {
    std::istringstream line = next();
    std::string name;
    line >> name;
    const MathFunction* const found = FindMathFunction(name);
    const auto unary = found == nullptr ? nullptr : found->unary;
    double (*const hypotenuse)(double, double) = std::hypot;
    const auto binary = found == nullptr ? hypotenuse : found->binary;
    const std::vector<double> expected = Numbers(line);
    ASSERT_EQ(expected.size(), unary ? alone.size() : both.size() * both.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      const double x = unary ? alone[i] : both[i / both.size()];
      const double y = unary ? 0 : both[i % both.size()];
      const double value = unary ? unary(x) : binary(x, y);
      EXPECT_PRED2(IsNextTo, value, expected[i]) << name << " of " << x << ", " << y;
    }
  }
  EXPECT_EQ(functions, 17);
}

}  // namespace
}  // namespace tesselc

#include "kernel/frequency_filter.h"

#include <algorithm>
#include <numbers>

#include "tests/kernel/samples.h"

namespace vela::kernel {
namespace {

using Complex = std::complex<double>;

FrequencyFilter Filter(std::uint32_t type, double cutoff, int order = 0, double cutoff2 = 0) {
  return MakeFrequencyFilter(type, cutoff, order, cutoff2).value();
}

TEST(FrequencyFilterTest, TypesAndCutoffsAreChecked) {
  struct Case {
    std::uint32_t type;
    double cutoff;
    int order;
    double cutoff2;
    bool valid;
  };
  const Case cases[] = {
      {0, 0.5, 0, 0, true},           {1, 1, 2147483647, kNaN, true}, {2, 0.2, 1, 0.4, true},
      {0x103, 0.2, 1, 1, true},       {4, 0.5, 1, 0.6, false},        {0x200, 0.5, 1, 0.6, false},
      {0x80000000, 0.5, 1, 1, false}, {0, 0, 1, 0.5, false},          {0, 1.01, 1, 0.5, false},
      {0, kNaN, 1, 0.5, false},       {0, 0.5, -1, 0.5, false},       {2, 0.4, 1, 0.4, false},
      {3, 0.4, 1, 0.2, false},        {3, 0.4, 1, kNaN, false},       {2, 0.4, 1, 1.5, false},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(MakeFrequencyFilter(c.type, c.cutoff, c.order, c.cutoff2).has_value(), c.valid)
        << c.type << ' ' << c.cutoff << ' ' << c.order << ' ' << c.cutoff2;
  }
}

TEST(FrequencyFilterTest, ResponsesAtKnownDistances) {
  struct Case {
    FrequencyFilter filter;
    double radius, expected;
  };
  const double e2 = std::exp(-2), e8 = std::exp(-0.125);
  const Case cases[] = {
      {Filter(0, 0.3), 0.3, 1},
      {Filter(0, 0.3), 0.31, 0},
      {Filter(1, 0.3), 0.3, 0},
      {Filter(1, 0.3), 0.31, 1},
      {Filter(2, 0.3, 0, 0.5), 0.3, 0},
      {Filter(2, 0.3, 0, 0.5), 0.5, 1},
      {Filter(3, 0.3, 0, 0.5), 0.4, 0},
      {Filter(0, 0.4, 3), 0.4, 0.5},
      {Filter(0, 0.4, 1), 0.8, 0.2},
      {Filter(1, 0.4, 1), 0.8, 0.8},
      {Filter(0, 0.5, 2000000000), 0, 1},
      {Filter(0, 0.5, 2000000000), 1.4, 0},
      {Filter(0x100, 0.4), 0.8, e2},
      {Filter(0x103, 0.4, 0, 0.8), 0.8, 1 - std::exp(-0.5) * (1 - e2)},
      {Filter(0x101, 0.8), 0.4, 1 - e8},
  };
  for (const Case& c : cases) EXPECT_DOUBLE_EQ(Response(c.filter, c.radius), c.expected);
}

// The values of x (rows by cols, contiguous lines of one or the other) transformed by the sum that
// the transform is.
std::vector<Complex> NaiveTransform(const std::vector<Complex>& x, std::size_t rows,
                                    std::size_t cols, double sign) {
  const auto lines = [sign](const std::vector<Complex>& from, std::size_t count, std::size_t size,
                            std::size_t line_step, std::size_t step) {
    std::vector<Complex> to(from.size()), roots(size);
    for (std::size_t k = 0; k < size; ++k) {
      const long double turn = static_cast<long double>(k) / static_cast<long double>(size);
      const auto angle = static_cast<double>(sign * 2 * std::numbers::pi_v<long double> * turn);
      roots[k] = {std::cos(angle), std::sin(angle)};
    }
    for (std::size_t line = 0; line < count; ++line) {
      for (std::size_t f = 0; f < size; ++f) {
        Complex sum;
        for (std::size_t k = 0; k < size; ++k) {
          sum += from[line * line_step + k * step] * roots[f * k % size];
        }
        to[line * line_step + f * step] = sum;
      }
    }
    return to;
  };
  return lines(lines(x, rows, cols, cols, 1), cols, rows, 1, cols);
}

std::vector<Complex> NaiveFilter(const std::vector<Complex>& x, std::size_t rows, std::size_t cols,
                                 const FrequencyFilter& filter) {
  std::vector<Complex> spectrum = NaiveTransform(x, rows, cols, -1);
  for (std::size_t r = 0; r < rows; ++r) {
    for (std::size_t c = 0; c < cols; ++c) {
      const double fy = static_cast<double>(std::min(r, rows - r)) / static_cast<double>(rows);
      const double fx = static_cast<double>(std::min(c, cols - c)) / static_cast<double>(cols);
      spectrum[r * cols + c] *=
          Response(filter, 2 * std::sqrt(fy * fy + fx * fx)) / static_cast<double>(rows * cols);
    }
  }
  return NaiveTransform(spectrum, rows, cols, 1);
}

TEST(FrequencyFilterTest, FiltersAsTheSumsDo) {
  struct Shape {
    std::size_t rows, cols;
  };
  // Every radix and chirp, real and imaginary middles, lines short of and beyond a vector's.
  const Shape shapes[] = {{1, 1},   {1, 2},   {2, 1},  {3, 2},   {1, 30},  {30, 1},  {2, 37},
                          {41, 3},  {4, 8},   {16, 9}, {17, 16}, {33, 35}, {64, 21}, {22, 49},
                          {74, 31}, {25, 78}, {5, 94}, {128, 1}, {1, 256}, {1, 300}, {7, 1000}};
  const FrequencyFilter filters[] = {
      Filter(0, 0.45),         Filter(1, 0.3, 2),          Filter(0x100, 0.2),
      Filter(2, 0.2, 3, 0.61), Filter(0x102, 0.1, 0, 0.7), Filter(3, 0.22, 0, 0.81)};
  std::size_t turn = 0;
  for (const auto& [rows, cols] : shapes) {
    const FrequencyFilter& filter = filters[turn++ % std::size(filters)];
    const std::vector<double> re = RandomElements<double>(rows * cols, false, turn);
    const std::vector<double> im = RandomElements<double>(rows * cols, false, turn + 99);
    std::vector<Complex> z(re.size());
    for (std::size_t i = 0; i < z.size(); ++i) z[i] = {re[i], im[i]};
    const std::vector<Complex> expected = NaiveFilter(z, rows, cols, filter);
    Unaligned<double> real(re);
    FilterFrequencies(MatrixSpan<double>(real.span(), rows, cols), filter);
    FilterFrequencies(MatrixSpan<Complex>(z, rows, cols), filter);
    for (std::size_t i = 0; i < z.size(); ++i) {
      // the elements are below 2^19
      ASSERT_NEAR(real.span()[i], expected[i].real(), 1e-9) << rows << " x " << cols << ": " << i;
      ASSERT_LE(std::abs(z[i] - expected[i]), 2e-9) << rows << " x " << cols << ": " << i;
    }
  }
  FilterFrequencies(MatrixSpan<double>(nullptr, 0, 5), filters[0]);
  FilterFrequencies(MatrixSpan<Complex>(nullptr, 5, 0), filters[0]);
}

TEST(FrequencyFilterTest, LargeSizesKeepWavesThatPass) {
  struct Shape {
    std::size_t rows, cols;
  };
  for (const auto& [rows, cols] :
       {Shape{1021, 64}, {60, 1021}, {2048, 48}, {33, 4096}, {1, 70001}}) {
    std::vector<double> kept(rows * cols), x(rows * cols);
    const auto wave = [](std::size_t k, std::size_t cycles, std::size_t n) {
      return std::cos(2 * std::numbers::pi * static_cast<double>(k * cycles % n) /
                      static_cast<double>(n));
    };
    for (std::size_t r = 0; r < rows; ++r) {
      for (std::size_t c = 0; c < cols; ++c) {
        kept[r * cols + c] = 2 + wave(r, rows / 8, rows) * wave(c, cols / 9, cols);
        x[r * cols + c] =
            kept[r * cols + c] + 7 * wave(c, cols * 2 / 5, cols) * wave(r, rows / 3, rows);
      }
    }
    FilterFrequencies(MatrixSpan<double>(x, rows, cols), Filter(0, 0.5));
    for (std::size_t i = 0; i < x.size(); ++i)
      ASSERT_NEAR(x[i], kept[i], 3e-14) << rows << " x " << cols;
  }
}

}  // namespace
}  // namespace vela::kernel

#include "kernel/frequency_mask.h"

#include <algorithm>
#include <cmath>

namespace vela::kernel {
namespace {

// Rounding must not decide whether an ideal filter passes a frequency at its cut-off.
constexpr double kAtCutoff = 1 + 1e-12;

constexpr std::size_t kPadding = 8;  // the lanes of the widest vector

double Square(double x) { return x * x; }

double LowPassResponse(const FrequencyFilter& filter, double radius, double cutoff) {
  if (filter.gaussian) return std::exp(-Square(radius / cutoff) / 2);
  if (filter.order == 0) return radius <= cutoff * kAtCutoff ? 1 : 0;
  return 1 / (1 + std::pow(radius / cutoff, 2.0 * filter.order));
}

bool IsCutoff(double cutoff) { return cutoff > 0 && cutoff <= 1; }

FrequencyMask::Kind KindOf(const FrequencyFilter& filter) {
  if (filter.gaussian) return FrequencyMask::Kind::kGaussian;
  return filter.order == 0 ? FrequencyMask::Kind::kIdeal : FrequencyMask::Kind::kButterworth;
}

FrequencyMask::Edge MakeEdge(const FrequencyMask& mask, double cutoff) {
  FrequencyMask::Edge edge{.limit = Square(cutoff * kAtCutoff),
                           .scale = 1 / Square(cutoff),
                           .row_factors = std::vector<double>(mask.row_squares.size()),
                           .col_factors = std::vector<double>(mask.col_squares.size())};
  if (mask.kind != FrequencyMask::Kind::kGaussian) return edge;
  const auto factor = [&](double square) { return std::exp(-square / (2 * Square(cutoff))); };
  std::ranges::transform(mask.row_squares, edge.row_factors.begin(), factor);
  std::ranges::transform(mask.col_squares, edge.col_factors.begin(), factor);
  return edge;
}

// The square of a frequency of n elements, in units of the Nyquist frequency.
double FrequencySquare(std::size_t frequency, std::size_t n) {
  const std::size_t nearest = std::min(frequency, n - frequency);
  return Square(2 * static_cast<double>(nearest) / static_cast<double>(n));
}

}  // namespace

std::optional<FrequencyFilter> MakeFrequencyFilter(std::uint32_t filter_type, double cutoff,
                                                   int order, double cutoff2) {
  constexpr std::uint32_t kBandMask = 0xFF, kGaussian = 0x100;
  const std::uint32_t band = filter_type & kBandMask;
  if ((filter_type & ~(kBandMask | kGaussian)) != 0) return std::nullopt;
  if (band > static_cast<std::uint32_t>(PassBand::kStop)) return std::nullopt;
  const FrequencyFilter filter{.band = static_cast<PassBand>(band),
                               .gaussian = (filter_type & kGaussian) != 0,
                               .cutoff = cutoff,
                               .order = order,
                               .cutoff2 = cutoff2};
  const bool has_two = filter.band == PassBand::kBand || filter.band == PassBand::kStop;
  if (!IsCutoff(cutoff) || order < 0) return std::nullopt;
  if (has_two && !(IsCutoff(cutoff2) && cutoff < cutoff2)) return std::nullopt;
  return filter;
}

double Response(const FrequencyFilter& filter, double radius) {
  const double low = LowPassResponse(filter, radius, filter.cutoff);
  if (filter.band == PassBand::kLow) return low;
  if (filter.band == PassBand::kHigh) return 1 - low;
  const double band = LowPassResponse(filter, radius, filter.cutoff2) * (1 - low);
  return filter.band == PassBand::kBand ? band : 1 - band;
}

FrequencyMask::FrequencyMask(const FrequencyFilter& filter,
                             std::span<const std::size_t> row_frequencies, std::size_t cols)
    : kind(KindOf(filter)),
      order(static_cast<unsigned>(filter.order)),
      has_lower(filter.band != PassBand::kLow),
      has_upper(filter.band != PassBand::kHigh),
      is_stop(filter.band == PassBand::kStop),
      row_squares(row_frequencies.size()),
      col_squares(cols / 2 + 1 + kPadding),
      scale(0.5 / static_cast<double>(row_frequencies.size()) / static_cast<double>(cols)) {
  for (std::size_t i = 0; i < row_squares.size(); ++i) {
    row_squares[i] = FrequencySquare(row_frequencies[i], row_squares.size());
  }
  for (std::size_t i = 0; i <= cols / 2; ++i) col_squares[i] = FrequencySquare(i, cols);
  lower = MakeEdge(*this, filter.cutoff);
  upper = MakeEdge(*this, filter.band == PassBand::kLow ? filter.cutoff : filter.cutoff2);
}

}  // namespace vela::kernel

#include "kernel/random.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <concepts>
#include <cstddef>

#include "kernel/convert.h"

namespace vela::kernel {

namespace {

// The generator's state while values are drawn: a local copy, so that a loop keeps it in registers.
class Stream {
 public:
  explicit Stream(std::array<std::uint64_t, 4>& state) : home_(state), s_(state) {}
  ~Stream() { home_ = s_; }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  std::uint64_t Next() {
    const std::uint64_t result = std::rotl(s_[0] + s_[3], 23) + s_[0];
    const std::uint64_t shifted = s_[1] << 17;
    s_[2] ^= s_[0];
    s_[3] ^= s_[1];
    s_[1] ^= s_[2];
    s_[0] ^= s_[3];
    s_[2] ^= shifted;
    s_[3] = std::rotl(s_[3], 45);
    return result;
  }

  double Uniform() {
    return static_cast<double>(static_cast<std::int64_t>(Next() >> 11)) * 0x1p-53;
  }

  /// Uniform over (0, 1].
  double UniformAboveZero() { return Uniform() + 0x1p-53; }

 private:
  std::array<std::uint64_t, 4>& home_;
  std::array<std::uint64_t, 4> s_;
};

// The C library's exp and log differ between platforms in the last place. These two are not quite
// as exact, but the same everywhere.

constexpr double kLn2High = 0x1.62e42fefap-1;  // short enough that n * kLn2High is exact
constexpr double kLn2Low = 0x1.cf79abc9e3b3ap-40;

// For x in [-700, 0].
double PortableExp(double x) {
  const double n = std::floor(x * 0x1.71547652b82fep+0 + 0.5);
  const double r = (x - n * kLn2High) - n * kLn2Low;
  double sum = 1;
  for (int k = 14; k > 0; --k) sum = 1 + sum * r / k;
  return std::ldexp(sum, static_cast<int>(n));
}

// For positive normal x.
double PortableLog(double x) {
  int exponent = 0;
  double m = std::frexp(x, &exponent);
  if (m < 0x1.6a09e667f3bcdp-1) {
    m *= 2;
    --exponent;
  }
  const double s = (m - 1) / (m + 1);
  const double square = s * s;
  double sum = 0;
  for (int k = 25; k > 0; k -= 2) sum = sum * square + 1.0 / k;
  return exponent * kLn2High + (2 * s * sum + exponent * kLn2Low);
}

double Density(double x) { return PortableExp(-0.5 * x * x); }

// The upper half of the bell curve, cut into layers of equal area. Layer i reaches from the centre
// to edge[i] and lies fully under the curve up to edge[i + 1]; layer 0 stands for the base strip
// and the tail beyond edge[1] together.
struct Ziggurat {
  static constexpr std::size_t kLayers = 256;
  // The edge at which 256 layers close exactly at the top of the curve, and the area of each.
  static constexpr double kTail = 3.654152885361009;
  static constexpr double kArea = 0.004928673233974655;

  std::array<double, kLayers + 1> edge;
  std::array<double, kLayers + 1> density;    // at the edges
  std::array<double, kLayers> scale;          // from a 52-bit number to [0, edge)
  std::array<std::uint64_t, kLayers> inside;  // 52-bit numbers below this are under the curve

  Ziggurat() {
    edge[0] = kArea / Density(kTail);
    edge[1] = kTail;
    edge[kLayers] = 0;
    for (std::size_t i = 2; i < kLayers; ++i) {
      edge[i] = std::sqrt(-2 * PortableLog(kArea / edge[i - 1] + Density(edge[i - 1])));
    }
    for (std::size_t i = 0; i <= kLayers; ++i) density[i] = Density(edge[i]);
    for (std::size_t i = 0; i < kLayers; ++i) {
      scale[i] = edge[i] * 0x1p-52;
      inside[i] = static_cast<std::uint64_t>(edge[i + 1] / edge[i] * 0x1p52);
    }
  }
};

const Ziggurat& GetZiggurat() {
  static const Ziggurat ziggurat;
  return ziggurat;
}

double DrawTail(Stream& stream) {
  for (;;) {
    const double beyond = -PortableLog(stream.UniformAboveZero()) / Ziggurat::kTail;
    const double height = -PortableLog(stream.UniformAboveZero());
    if (2 * height > beyond * beyond) return Ziggurat::kTail + beyond;
  }
}

// For a point of layer i that is not surely under the curve: its distance from the centre when it
// is accepted, else a negative number.
double ResolveEdge(Stream& stream, const Ziggurat& ziggurat, std::size_t layer, double x) {
  if (layer == 0) return DrawTail(stream);
  const double low = ziggurat.density[layer];
  const double high = ziggurat.density[layer + 1];
  return low + stream.Uniform() * (high - low) < Density(x) ? x : -1;
}

double DrawNormal(Stream& stream, const Ziggurat& ziggurat) {
  for (;;) {
    // The lowest 8 bits choose the layer, the next the sign, the highest 52 the place.
    const std::uint64_t word = stream.Next();
    const std::size_t layer = word % Ziggurat::kLayers;
    const std::uint64_t place = word >> 12;
    double x = static_cast<double>(static_cast<std::int64_t>(place)) * ziggurat.scale[layer];
    if (place >= ziggurat.inside[layer]) [[unlikely]] {
      x = ResolveEdge(stream, ziggurat, layer, x);
      if (x < 0) continue;
    }
    const std::uint64_t sign = (word & Ziggurat::kLayers) << 55;
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(x) | sign);
  }
}

// Stores draw() in every element, in order.
template <class T, class Draw>
void Fill(std::span<T> x, Draw draw) {
  if constexpr (std::same_as<T, double>) {
    for (double& value : x) value = draw();
  } else {
    std::array<double, 512> values;
    for (std::size_t begin = 0; begin < x.size(); begin += values.size()) {
      const std::size_t count = std::min(values.size(), x.size() - begin);
      const std::span<double> block = std::span(values).first(count);
      for (double& value : block) value = draw();
      Convert<T, double>(block, x.subspan(begin, count));
    }
  }
}

}  // namespace

void RandomSource::Seed(double seed) {
  std::uint64_t counter = std::bit_cast<std::uint64_t>(seed);
  if (seed == 0) counter = 0;
  if (std::isnan(seed)) counter = 0x7FF8000000000000;
  for (std::uint64_t& word : state_) {
    counter += 0x9E3779B97F4A7C15;
    std::uint64_t mixed = (counter ^ (counter >> 30)) * 0xBF58476D1CE4E5B9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
    word = mixed ^ (mixed >> 31);
  }
}

double RandomSource::Uniform() { return Stream(state_).Uniform(); }

double RandomSource::Normal() {
  Stream stream(state_);
  return DrawNormal(stream, GetZiggurat());
}

template <Element T>
void RandomSource::FillUniform(std::span<T> x) {
  Stream stream(state_);
  if constexpr (std::same_as<T, float>) {
    // A number that a float would round to 1 becomes the one below.
    Fill(x, [&] { return std::min(stream.Uniform(), 0x1.fffffep-1); });
  } else {
    Fill(x, [&] { return stream.Uniform(); });
  }
}

template <Element T>
void RandomSource::FillNormal(std::span<T> x) {
  Stream stream(state_);
  const Ziggurat& ziggurat = GetZiggurat();
  Fill(x, [&] { return DrawNormal(stream, ziggurat); });
}

void RandomSource::FillIndices(std::span<std::uint32_t> x, std::uint32_t bound) {
  if (bound == 0) {
    std::ranges::fill(x, 0);
    return;
  }
  Stream stream(state_);
  // The high half of a 32-bit draw times bound is an index. Draws whose low half falls below this
  // remainder are repeated: without them every index has equally many draws.
  const std::uint32_t surplus = (0 - bound) % bound;
  for (std::uint32_t& index : x) {
    std::uint64_t product = 0;
    do {
      product = (stream.Next() >> 32) * bound;
    } while (static_cast<std::uint32_t>(product) < surplus);
    index = static_cast<std::uint32_t>(product >> 32);
  }
}

#define VELA_KERNEL_INSTANTIATE(T)                       \
  template void RandomSource::FillUniform(std::span<T>); \
  template void RandomSource::FillNormal(std::span<T>);
VELA_KERNEL_FOR_SIMPLE_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel

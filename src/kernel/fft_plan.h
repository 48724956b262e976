#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace vela::kernel {

/// How the discrete Fourier transform of a size is carried out: X[f] = sum x[k] exp(-2 pi i f k /
/// n).
///
/// A size of small prime factors takes a level for each: butterflies of that radix in place, then
/// multiplication by twiddle factors, which leaves radix independent transforms of a smaller size,
/// one after the other. So the frequencies end up in an order of their own, and an inverse that
/// takes the levels backwards finds them there. Other sizes are a convolution with a chirp, done by
/// transforms of a larger size.
struct FftPlan {
  /// The largest prime factor that is a radix.
  static constexpr std::size_t kLargestRadix = 31;

  struct Level {
    std::size_t radix = 0;
    std::size_t step = 0;          ///< between the elements of a butterfly: the size left after it
    std::vector<double> twiddles;  ///< exp(-2 pi i j k / (radix * step)), re and im: a row of j = 1
                                   ///< .. radix - 1 for each k < step
    std::vector<double> roots;  ///< cos and sin of 2 pi k / radix for k < radix, odd radices only

    std::size_t Size() const { return radix * step; }
  };

  /// Throws std::bad_alloc.
  explicit FftPlan(std::size_t transform_size);

  std::size_t size;
  std::vector<Level> levels;
  std::vector<std::size_t> frequencies;  ///< that a place holds after the transform
  std::vector<std::size_t> places;       ///< where a frequency is

  /// Of a size that is done by a convolution: the transform of the larger size, exp(-pi i k^2 / n)
  /// for each k, and, by places of the larger transform, the transform of the chirp to convolve
  /// with, divided by the larger size. Whoever carries transforms out fills in the last.
  std::unique_ptr<FftPlan> larger;
  std::vector<double> chirp;
  std::vector<double> chirp_spectrum;

  /// The elements that the transform works in, of which it leaves the first `size`.
  std::size_t WorkSize() const { return larger ? larger->size : size; }
};

}  // namespace vela::kernel

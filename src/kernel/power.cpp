#include "kernel/power.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "kernel/dispatch.h"
#include "kernel/missing.h"
#include "kernel/power_tables.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/power.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

// x^y = 2^(y * log2 x), with log2 x and the product carried as unevaluated sums of two doubles so
// that the error of the exponent stays far below the last place of the result.
//
// log2: x = 2^k * m with m in [23/32, 23/16). The leading 5 bits of m choose c, a short number
// close to 1/m, so that r = m * c - 1 is exact and at most 1/32. Then log2 x = k - log2 c + log2(1
// + r). exp2: the exponent is n/16 + f with |f| <= 1/32, so 2^exponent = 2^(n/16) * 2^f.

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {

// How one power is computed on its own: for the operands the vector code leaves out, and where
// there is no vector code.

struct Plain {
  static constexpr bool kChecked = false;
  static double Of(double x, double y) { return std::pow(x, y); }
};

struct Checked {
  static constexpr bool kChecked = true;
  static double Of(double x, double y) {
    if (IsMissing(x) || IsMissing(y)) return kMissing;
    const double power = std::pow(x, y);
    return !std::isfinite(power) || std::isnan(x) || std::isnan(y) ? kMissing : power;
  }
};

#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3

namespace hn = hwy::HWY_NAMESPACE;
using namespace power_tables;

using D = hn::ScalableTag<double>;
using Bits = hn::RebindToUnsigned<D>;
using V = hn::Vec<D>;
using B = hn::Vec<Bits>;

// table[index], where the table has 16 or 32 entries and index no higher bit set.
template <std::size_t kSize>
HWY_INLINE V Lookup(const double (&table)[kSize], B index) {
  const D d;
#if HWY_TARGET == HWY_AVX3
  // Permutations of registers: several times faster than gathering from memory.
  const auto from16 = [&](const double* part) HWY_ATTR {
    return V{_mm512_permutex2var_pd(hn::Load(d, part).raw, index.raw, hn::Load(d, part + 8).raw)};
  };
  if constexpr (kSize == 16) {
    return from16(table);
  } else {
    const auto upper = hn::TestBit(index, hn::Set(Bits(), 16));
    return hn::IfThenElse(hn::RebindMask(d, upper), from16(table + 16), from16(table));
  }
#else
  return hn::GatherIndex(d, table, hn::BitCast(hn::RebindToSigned<D>(), index));
#endif
}

// The polynomial with these terms, lowest first; even and odd terms apart to shorten the chain.
template <std::size_t kTerms>
HWY_INLINE V Polynomial(const double (&terms)[kTerms], V x) {
  static_assert(kTerms % 2 == 1);
  const D d;
  const V square = hn::Mul(x, x);
  V even = hn::Set(d, terms[kTerms - 1]);
  V odd = hn::Set(d, terms[kTerms - 2]);
  for (std::size_t i = kTerms - 1; i >= 4; i -= 2) {
    even = hn::MulAdd(even, square, hn::Set(d, terms[i - 2]));
    odd = hn::MulAdd(odd, square, hn::Set(d, terms[i - 3]));
  }
  return hn::MulAdd(odd, x, hn::MulAdd(even, square, hn::Set(d, terms[0])));
}

struct Sum {
  V high;
  V low;
};

// log2 of positive normal numbers.
HWY_INLINE Sum Log2(V x) {
  const D d;
  const Bits bits;
  const B raw = hn::BitCast(bits, x);
  const B index = hn::And(hn::ShiftRight<47>(raw), hn::Set(bits, kLogSteps - 1));
  // Adding 9/16 to the mantissa carries into the exponent exactly where m is halved.
  const B exponent = hn::ShiftRight<52>(hn::Add(raw, hn::Set(bits, std::uint64_t{9} << 48)));
  const B mantissa = hn::Sub(raw, hn::ShiftLeft<52>(exponent));
  const V m = hn::BitCast(d, hn::Add(mantissa, hn::Set(bits, std::uint64_t{1023} << 52)));
  const V k = hn::Sub(hn::BitCast(d, hn::Or(exponent, hn::Set(bits, std::uint64_t{0x433} << 52))),
                      hn::Set(d, 0x1p52 + 1023));

  const V r = hn::MulSub(m, Lookup(kReciprocal, index), hn::Set(d, 1.0));
  const V half_r = hn::Mul(r, hn::Set(d, 0.5));
  const V square = hn::Mul(r, half_r);
  const V square_low = hn::MulSub(r, half_r, square);
  const V cube = hn::Mul(hn::Mul(r, r), r);

  // (r - r^2/2) / ln 2 as a sum.
  const V near = hn::Sub(r, square);
  const V near_low = hn::Sub(hn::Sub(hn::Sub(r, near), square), square_low);
  const V scale = hn::Set(d, kLogScaleHigh);
  const V term = hn::Mul(near, scale);
  V low = hn::MulSub(near, scale, term);
  low = hn::MulAdd(near, hn::Set(d, kLogScaleLow), low);
  low = hn::MulAdd(near_low, scale, low);
  low = hn::MulAdd(cube, Polynomial(kLogTerms, r), low);
  low = hn::Add(low, Lookup(kLogLow, index));

  // whole is 0 or its exponent is not below that of term, so what the sum loses is exact.
  const V whole = hn::Add(k, Lookup(kLogHigh, index));
  const V sum = hn::Add(whole, term);
  low = hn::Add(low, hn::Sub(term, hn::Sub(sum, whole)));

  const V high = hn::Add(sum, low);
  return {high, hn::Sub(low, hn::Sub(high, sum))};
}

// 2^(e.high + e.low) for |e.high| < 1021.
HWY_INLINE V Exp2(Sum e) {
  const D d;
  const Bits bits;
  // Adding this leaves the exponent, in sixteenths, in the low bits of the sum.
  const V shift = hn::Set(d, 0x1.8p48);
  const V shifted = hn::Add(e.high, shift);
  const B n = hn::BitCast(bits, shifted);
  const V f = hn::Add(hn::Sub(e.high, hn::Sub(shifted, shift)), e.low);

  const B index = hn::And(n, hn::Set(bits, kExpSteps - 1));
  const V base = Lookup(kExpHigh, index);
  const V rest = hn::Mul(f, Polynomial(kExpTerms, f));
  const V value = hn::Add(base, hn::MulAdd(base, rest, Lookup(kExpLow, index)));
  const B exponent = hn::ShiftLeft<52>(hn::ShiftRight<4>(n));
  return hn::BitCast(d, hn::Add(hn::BitCast(bits, value), exponent));
}

// Where x is negative and y an odd whole number: the sign bit. Elsewhere 0.
HWY_INLINE V SignOfPower(V x, V y) {
  const D d;
  const V half = hn::Mul(y, hn::Set(d, 0.5));
  const V odd = hn::IfThenElseZero(hn::Ne(half, hn::Floor(half)), hn::Set(d, -0.0));
  return hn::And(odd, x);
}

// One vector of powers; sets *done where the value stands. The rest are the rare operands: zeros,
// subnormals, infinities, NaN, missing values where they count, a negative x without a real power,
// results near overflow and underflow.
template <class Scalar>
HWY_INLINE V PowerVector(V x, V y, hn::Mask<D>* done) {
  const D d;
  const V magnitude = hn::Abs(x);
  const Sum log = Log2(magnitude);
  Sum e;
  e.high = hn::Mul(y, log.high);
  e.low = hn::MulAdd(y, log.low, hn::MulSub(y, log.high, e.high));
  const V value = hn::Or(Exp2(e), SignOfPower(x, y));

  const auto normal =
      hn::And(hn::Ge(magnitude, hn::Set(d, 0x1p-1022)), hn::Lt(magnitude, hn::Inf(d)));
  const auto real = hn::Or(hn::Gt(x, hn::Zero(d)), hn::Eq(y, hn::Floor(y)));
  *done = hn::And(hn::And(normal, real), hn::Lt(hn::Abs(e.high), hn::Set(d, 1021.0)));
  if constexpr (Scalar::kChecked) {
    const V missing = hn::Set(d, kMissing);
    *done = hn::And(*done, hn::And(hn::Ne(x, missing), hn::Ne(y, missing)));
  }
  return value;
}

template <class Scalar>
void PowerLoop(const double* x, const double* y, double* result, std::size_t count) {
  const D d;
  constexpr std::size_t kLanes = hn::MaxLanes(d);
  std::size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    const V base = hn::LoadU(d, x + i);
    const V exponent = hn::LoadU(d, y + i);
    hn::Mask<D> done;
    const V value = PowerVector<Scalar>(base, exponent, &done);
    if (HWY_LIKELY(hn::AllTrue(d, done))) {
      hn::StoreU(value, d, result + i);
      continue;
    }
    alignas(64) std::array<double, kLanes> bases;
    alignas(64) std::array<double, kLanes> exponents;
    alignas(64) std::array<double, kLanes> values;
    hn::Store(base, d, bases.data());
    hn::Store(exponent, d, exponents.data());
    hn::Store(value, d, values.data());
    std::array<std::uint8_t, 8> done_bits{};
    hn::StoreMaskBits(d, done, done_bits.data());
    for (std::size_t lane = 0; lane < kLanes; ++lane) {
      const bool stands = (done_bits[0] >> lane) & 1;
      result[i + lane] = stands ? values[lane] : Scalar::Of(bases[lane], exponents[lane]);
    }
  }
  if (i == count) return;
  // The last part takes a full vector too, so that a value does not depend on its position.
  std::array<double, kLanes> bases;
  std::array<double, kLanes> exponents;
  bases.fill(1.0);
  exponents.fill(1.0);
  std::copy(x + i, x + count, bases.begin());
  std::copy(y + i, y + count, exponents.begin());
  PowerLoop<Scalar>(bases.data(), exponents.data(), bases.data(), kLanes);
  std::copy_n(bases.begin(), count - i, result + i);
}

#else

// Without fused multiply-add the sums of two doubles cost more than the C library's function.
template <class Scalar>
void PowerLoop(const double* x, const double* y, double* result, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) result[i] = Scalar::Of(x[i], y[i]);
}

#endif

void PlainLoop(const double* x, const double* y, double* result, std::size_t count) {
  PowerLoop<Plain>(x, y, result, count);
}

void CheckedLoop(const double* x, const double* y, double* result, std::size_t count) {
  PowerLoop<Checked>(x, y, result, count);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

void Power(std::span<const double> x, std::span<const double> y, std::span<double> result) {
  VELA_KERNEL_DISPATCH(PlainLoop)(x.data(), y.data(), result.data(), x.size());
}

void CheckedPower(std::span<const double> x, std::span<const double> y, std::span<double> result) {
  VELA_KERNEL_DISPATCH(CheckedLoop)(x.data(), y.data(), result.data(), x.size());
}

double CheckedPower(double x, double y) {
  if (std::isnan(x) || std::isnan(y))
    return IsMissing(x) || IsMissing(y) ? kMissing : std::pow(x, y);
  double result = 0;
  CheckedPower({&x, 1}, {&y, 1}, {&result, 1});
  return result;
}

}  // namespace vela::kernel
#endif

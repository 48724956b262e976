#pragma once

#include <cstddef>

// Constants of the vector power function; power.cpp tells how they are used.

namespace vela::kernel::power_tables {

inline constexpr std::size_t kLogSteps = 32;
inline constexpr std::size_t kExpSteps = 16;

// c for each step of m, and -log2 c as a value of 40 fractional bits and a correction.
alignas(64) inline constexpr double kReciprocal[kLogSteps] = {
    0x1p+0,    0x1.e8p-1, 0x1.d8p-1, 0x1.dp-1,  0x1.cp-1,  0x1.b8p-1, 0x1.a8p-1, 0x1.ap-1,
    0x1.98p-1, 0x1.88p-1, 0x1.8p-1,  0x1.78p-1, 0x1.7p-1,  0x1.68p-1, 0x1.6p+0,  0x1.58p+0,
    0x1.5p+0,  0x1.48p+0, 0x1.48p+0, 0x1.4p+0,  0x1.38p+0, 0x1.3p+0,  0x1.3p+0,  0x1.28p+0,
    0x1.2p+0,  0x1.2p+0,  0x1.18p+0, 0x1.1p+0,  0x1.1p+0,  0x1.08p+0, 0x1.08p+0, 0x1p+0};
alignas(64) inline constexpr double kLogHigh[kLogSteps] = {0x0p+0,
                                                           0x1.1bb32a6p-4,
                                                           0x1.e0b1ae8f3p-4,
                                                           0x1.22dadc2abp-3,
                                                           0x1.8a8980abf8p-3,
                                                           0x1.bfc67a8p-3,
                                                           0x1.169c05364p-2,
                                                           0x1.32bfee371p-2,
                                                           0x1.4f6fbb2cecp-2,
                                                           0x1.8a8980abfcp-2,
                                                           0x1.a8ff97181p-2,
                                                           0x1.c819dc2d44p-2,
                                                           0x1.e7df5fe538p-2,
                                                           0x1.042bd4b9a8p-1,
                                                           -0x1.d6753e033p-2,
                                                           -0x1.b47ebf7388p-2,
                                                           -0x1.91bba891fp-2,
                                                           -0x1.6e221cd9dp-2,
                                                           -0x1.6e221cd9dp-2,
                                                           -0x1.49a784bcdp-2,
                                                           -0x1.24407ab0ep-2,
                                                           -0x1.fbc16b9028p-3,
                                                           -0x1.fbc16b9028p-3,
                                                           -0x1.acf5e2db5p-3,
                                                           -0x1.5c01a39fcp-3,
                                                           -0x1.5c01a39fcp-3,
                                                           -0x1.08c588cda8p-3,
                                                           -0x1.663f6fac9p-4,
                                                           -0x1.663f6fac9p-4,
                                                           -0x1.6bad3758ep-5,
                                                           -0x1.6bad3758ep-5,
                                                           0x0p+0};
alignas(64) inline constexpr double kLogLow[kLogSteps] = {0x0p+0,
                                                          0x1.52743318a8a57p-42,
                                                          -0x1.54cda62d3926ep-47,
                                                          0x1.a4b69691d7994p-42,
                                                          0x1.e9933354dbf17p-42,
                                                          -0x1.667f21fa8423fp-44,
                                                          -0x1.d4f1b95e0ff45p-43,
                                                          -0x1.1979a5db68722p-42,
                                                          0x1.661e393a16b95p-44,
                                                          -0x1.66cccab240e9p-45,
                                                          0x1.4bc302ffa76fbp-43,
                                                          0x1.fe43895d8ac46p-42,
                                                          0x1.5669df6a2b592p-43,
                                                          -0x1.b3b3864c60011p-44,
                                                          0x1.5f101c141e67p-42,
                                                          -0x1.50520a377c7ecp-45,
                                                          -0x1.708b4b2b5056cp-42,
                                                          -0x1.9bcaf1aa4168ap-43,
                                                          -0x1.9bcaf1aa4168ap-43,
                                                          -0x1.b8afe492bf6ffp-42,
                                                          -0x1.ce60916e52e91p-44,
                                                          0x1.7f5dc57266758p-43,
                                                          0x1.7f5dc57266758p-43,
                                                          0x1.36c101ee1344p-43,
                                                          0x1.4bc302ffa76fbp-42,
                                                          0x1.4bc302ffa76fbp-42,
                                                          0x1.871a7610e40bdp-45,
                                                          -0x1.3167ccc538261p-44,
                                                          -0x1.3167ccc538261p-44,
                                                          -0x1.fb0e626c0de13p-42,
                                                          -0x1.fb0e626c0de13p-42,
                                                          0x0p+0};

// 2^(i/16) and what its rounding left out.
alignas(64) inline constexpr double kExpHigh[kExpSteps] = {0x1p+0,
                                                           0x1.0b5586cf9890fp+0,
                                                           0x1.172b83c7d517bp+0,
                                                           0x1.2387a6e756238p+0,
                                                           0x1.306fe0a31b715p+0,
                                                           0x1.3dea64c123422p+0,
                                                           0x1.4bfdad5362a27p+0,
                                                           0x1.5ab07dd485429p+0,
                                                           0x1.6a09e667f3bcdp+0,
                                                           0x1.7a11473eb0187p+0,
                                                           0x1.8ace5422aa0dbp+0,
                                                           0x1.9c49182a3f09p+0,
                                                           0x1.ae89f995ad3adp+0,
                                                           0x1.c199bdd85529cp+0,
                                                           0x1.d5818dcfba487p+0,
                                                           0x1.ea4afa2a490dap+0};
alignas(64) inline constexpr double kExpLow[kExpSteps] = {0x0p+0,
                                                          0x1.8a62e4adc610bp-54,
                                                          -0x1.19041b9d78a76p-55,
                                                          0x1.9b07eb6c70573p-54,
                                                          0x1.6f46ad23182e4p-55,
                                                          0x1.ada0911f09ebcp-55,
                                                          0x1.d4397afec42e2p-56,
                                                          0x1.6324c054647adp-54,
                                                          -0x1.bdd3413b26456p-54,
                                                          -0x1.41577ee04992fp-55,
                                                          0x1.6e9f156864b27p-54,
                                                          0x1.c7c46b071f2bep-56,
                                                          0x1.7a1cd345dcc81p-54,
                                                          0x1.11065895048ddp-55,
                                                          0x1.2ed02d75b3707p-55,
                                                          -0x1.e9c23179c2893p-54};

// 1 / ln 2 as a sum, and the polynomial for log2(1 + r) from the cubic term on, fitted so that its
// error is below 2^-66 of r.
inline constexpr double kLogScaleHigh = 0x1.71547652b82fep+0;
inline constexpr double kLogScaleLow = 0x1.777d0ffda0d24p-56;
inline constexpr double kLogTerms[] = {
    0x1.ec709dc3a03fdp-2,  -0x1.71547652b82b9p-2, 0x1.2776c50ef9bbep-2,
    -0x1.ec709dc56ec0ep-3, 0x1.a61762a958dd1p-3,  -0x1.71545c4fcaf21p-3,
    0x1.484afbd4efae8p-3,  -0x1.2801714c222dfp-3, 0x1.0d1a8681e40d8p-3};

// The polynomial for (2^f - 1) / f, fitted to 2^-60.
inline constexpr double kExpTerms[] = {
    0x1.62e42fefa39efp-1,  0x1.ebfbdff82c594p-3,  0x1.c6b08d704a0c1p-5, 0x1.3b2ab6fb09b31p-7,
    0x1.5d87fe7846d2cp-10, 0x1.430a49610efc6p-13, 0x1.ffcd7ad9a6463p-17};

}  // namespace vela::kernel::power_tables

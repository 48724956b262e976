#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <vector>

#include "kernel/dispatch.h"
#include "kernel/linear_algebra.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/integer_product.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

using Words = hn::ScalableTag<std::uint32_t>;

constexpr std::size_t kTileRows = 4;

// The product of kRows rows of a, from row on, with a panel of b: two vectors of columns, row by
// row.
template <std::size_t kRows>
HWY_INLINE void MultiplyTile(MatrixSpan<const std::uint32_t> a, std::size_t row,
                             const std::uint32_t* panel, std::uint32_t* out) {
  const Words d;
  const std::size_t lanes = hn::Lanes(d);
  hn::Vec<Words> left[kRows], right[kRows];
  for (std::size_t i = 0; i < kRows; ++i) left[i] = right[i] = hn::Zero(d);
  for (std::size_t k = 0; k < a.cols; ++k) {
    const auto b_left = hn::LoadU(d, panel + 2 * lanes * k);
    const auto b_right = hn::LoadU(d, panel + 2 * lanes * k + lanes);
    for (std::size_t i = 0; i < kRows; ++i) {
      const auto factor = hn::Set(d, a(row + i, k));
      left[i] = hn::Add(left[i], hn::Mul(factor, b_left));
      right[i] = hn::Add(right[i], hn::Mul(factor, b_right));
    }
  }
  for (std::size_t i = 0; i < kRows; ++i) {
    hn::StoreU(left[i], d, out + 2 * lanes * i);
    hn::StoreU(right[i], d, out + 2 * lanes * i + lanes);
  }
}

void MultiplyWords(MatrixSpan<const std::uint32_t> a, MatrixSpan<const std::uint32_t> b,
                   MatrixSpan<std::uint32_t> out) {
  const std::size_t width = 2 * hn::Lanes(Words());
  std::vector<std::uint32_t> panel(width * b.rows);
  std::uint32_t tile[kTileRows * 2 * hn::MaxLanes(Words())];
  for (std::size_t left = 0; left < b.cols; left += width) {
    const std::size_t cols = std::min(width, b.cols - left);
    for (std::size_t k = 0; k < b.rows; ++k) {
      std::copy_n(&b(k, left), cols, &panel[width * k]);
    }
    for (std::size_t row = 0; row < a.rows; row += kTileRows) {
      const std::size_t rows = std::min(kTileRows, a.rows - row);
      if (rows == kTileRows) {
        MultiplyTile<kTileRows>(a, row, panel.data(), tile);
      } else {
        for (std::size_t i = 0; i < rows; ++i) {
          MultiplyTile<1>(a, row + i, panel.data(), tile + width * i);
        }
      }
      for (std::size_t i = 0; i < rows; ++i) {
        std::copy_n(tile + width * i, cols, &out(row + i, left));
      }
    }
  }
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

// Wrapped sums of wrapped products are the low bits of those of any wider word.
template <class T>
void Multiply(MatrixSpan<const T> a, MatrixSpan<const T> b, MatrixSpan<T> out) {
  const auto multiply = VELA_KERNEL_DISPATCH(MultiplyWords);
  if constexpr (sizeof(T) == sizeof(std::uint32_t)) {
    const auto words = [](auto x) {
      using Word = std::conditional_t<std::is_const_v<std::remove_reference_t<decltype(*x.data)>>,
                                      const std::uint32_t, std::uint32_t>;
      return MatrixSpan<Word>(reinterpret_cast<Word*>(x.data), x.rows, x.cols);
    };
    multiply(words(a), words(b), words(out));
  } else {
    const std::vector<std::uint32_t> wide_a(a.data, a.data + a.Size());
    const std::vector<std::uint32_t> wide_b(b.data, b.data + b.Size());
    std::vector<std::uint32_t> wide(out.Size());
    multiply({wide_a, a.rows, a.cols}, {wide_b, b.rows, b.cols}, {wide, out.rows, out.cols});
    std::ranges::transform(wide, out.data, [](std::uint32_t word) { return static_cast<T>(word); });
  }
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template void Multiply(MatrixSpan<const T>, MatrixSpan<const T>, MatrixSpan<T>);
VELA_KERNEL_INSTANTIATE(char)
VELA_KERNEL_INSTANTIATE(unsigned char)
VELA_KERNEL_INSTANTIATE(short)
VELA_KERNEL_INSTANTIATE(unsigned short)
VELA_KERNEL_INSTANTIATE(int)
VELA_KERNEL_INSTANTIATE(unsigned int)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

#include "kernel/flip.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/flip.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/line_start.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

// The elements in reverse: within 16 bytes by a shuffle of bytes, then those blocks.
template <std::size_t kWidth, class D>
HWY_INLINE hn::Vec<D> Reversed(D d, hn::Vec<D> v) {
  if constexpr (kWidth < 16) {
    HWY_ALIGN static constexpr auto kOrder = [] {
      std::array<std::uint8_t, 16> order{};
      for (std::size_t i = 0; i < 16; ++i) {
        order[i] = static_cast<std::uint8_t>((15 - i) / kWidth * kWidth + i % kWidth);
      }
      return order;
    }();
    v = hn::TableLookupBytes(v, hn::LoadDup128(d, kOrder.data()));
  }
  const hn::Repartition<std::uint64_t, D> blocks;
  return hn::BitCast(d, hn::ReverseBlocks(blocks, hn::BitCast(blocks, v)));
}

// Exchanges vectors at both ends until the two would overlap by more than one vector; those are
// loaded before either is stored.
template <std::size_t kWidth, class D>
HWY_INLINE void ReverseBytes(D d, std::uint8_t* first, std::uint8_t* last) {
  const std::size_t step = hn::Lanes(d);
  while (static_cast<std::size_t>(last - first) >= step) {
    last -= step;
    const auto front = hn::LoadU(d, first);
    const auto back = hn::LoadU(d, last);
    hn::StoreU(Reversed<kWidth>(d, back), d, first);
    hn::StoreU(Reversed<kWidth>(d, front), d, last);
    if (last <= first + step) return;
    first += step;
  }
  if constexpr (hn::MaxLanes(D()) > 16) {
    ReverseBytes<kWidth>(hn::Half<D>(), first, last);
  } else {
    auto* a = reinterpret_cast<Word<kWidth>*>(first);
    auto* b = reinterpret_cast<Word<kWidth>*>(last);
    while (b - a > 1) std::swap(*a++, *--b);
  }
}

template <std::size_t kWidth>
HWY_INLINE void ReverseWords(Word<kWidth>* x, std::size_t n) {
  auto* const bytes = reinterpret_cast<std::uint8_t*>(x);
  ReverseBytes<kWidth>(hn::ScalableTag<std::uint8_t>(), bytes, bytes + n * kWidth);
}

template <std::size_t kWidth>
void ReverseRows(Word<kWidth>* x, std::size_t rows, std::size_t cols) {
  for (std::size_t r = 0; r < rows; ++r) ReverseWords(x + r * cols, cols);
}

template <class D>
HWY_INLINE void SwapVectors(D d, std::uint8_t* a, std::uint8_t* b) {
  const auto v = hn::LoadU(d, a);
  hn::StoreU(hn::LoadU(d, b), d, a);
  hn::StoreU(v, d, b);
}

HWY_INLINE void SwapBytes(std::uint8_t* a, std::uint8_t* b, std::size_t n) {
  const hn::ScalableTag<std::uint8_t> d;
  const hn::Full64<std::uint8_t> eight;
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= n; i += hn::Lanes(d)) SwapVectors(d, a + i, b + i);
  for (; i + 8 <= n; i += 8) SwapVectors(eight, a + i, b + i);
  for (; i < n; ++i) std::swap(a[i], b[i]);
}

void SwapRows(std::uint8_t* x, std::size_t rows, std::size_t row_bytes) {
  std::uint8_t* upper = x;
  std::uint8_t* lower = x + (rows - 1) * row_bytes;
  for (; upper < lower; upper += row_bytes, lower -= row_bytes) SwapBytes(upper, lower, row_bytes);
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <class W>
void Reverse(std::span<W> x) {
  FlipHorizontal(MatrixSpan<W>(x, 1, x.size()));
}

template <class W>
void FlipHorizontal(MatrixSpan<W> x) {
  if (x.cols < 2) return;
  VELA_KERNEL_DISPATCH(ReverseRows<sizeof(W)>)(x.data, x.rows, x.cols);
}

template <class W>
void FlipVertical(MatrixSpan<W> x) {
  if (x.cols == 1) return Reverse(x.Values());
  if (x.IsEmpty()) return;
  VELA_KERNEL_DISPATCH(SwapRows)
  (reinterpret_cast<std::uint8_t*>(x.data), x.rows, x.cols * sizeof(W));
}

#define VELA_KERNEL_INSTANTIATE(W)                \
  template void Reverse<W>(std::span<W>);         \
  template void FlipHorizontal<W>(MatrixSpan<W>); \
  template void FlipVertical<W>(MatrixSpan<W>);
VELA_KERNEL_FOR_MATRIX_WORDS(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif

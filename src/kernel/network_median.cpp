#include "kernel/network_median.h"

#include <algorithm>
#include <concepts>
#include <cstring>

#include "kernel/dispatch.h"

#ifndef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernel/network_median.cpp"
#endif
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "kernel/elementwise-inl.h"
#include "kernel/unroll-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vela::kernel::HWY_NAMESPACE {
namespace {
namespace hn = hwy::HWY_NAMESPACE;

template <class V>
HWY_INLINE void Exchange(V& a, V& b) {
  const V less = hn::Min(a, b);
  b = hn::Max(a, b);
  a = less;
}

template <class V>
HWY_INLINE void Sort3(V& a, V& b, V& c) {
  Exchange(a, b);
  Exchange(b, c);
  Exchange(a, b);
}

// The compiler leaves out what yields only numbers that are not used.
template <class V>
HWY_INLINE void Sort5(V& a, V& b, V& c, V& d, V& e) {
  Exchange(a, b);
  Exchange(d, e);
  Exchange(c, e);
  Exchange(c, d);
  Exchange(a, d);
  Exchange(b, e);
  Exchange(a, c);
  Exchange(b, d);
  Exchange(b, c);
}

template <class V>
HWY_INLINE V Median3(V a, V b, V c) {
  return hn::Max(hn::Min(a, b), hn::Min(hn::Max(a, b), c));
}

template <class V>
HWY_INLINE V Median7(V a, V b, V c, V d, V e, V f, V g) {
  Exchange(a, f);
  Exchange(a, d);
  Exchange(b, g);
  Exchange(c, e);
  Exchange(a, b);
  Exchange(d, f);
  Exchange(c, g);
  Exchange(c, d);
  Exchange(d, g);
  Exchange(e, f);
  Exchange(b, e);
  Exchange(b, d);
  Exchange(d, e);
  return d;
}

// The sorted elements of a column at each place of a row.
template <class D, std::size_t kSide>
struct SortedColumns {
  using Lane = hn::TFromD<D>;
  const Lane* line[kSide];

  HWY_INLINE hn::Vec<D> Load(std::size_t rank, std::size_t column) const {
    return hn::LoadU(D(), line[rank] + column);
  }

  HWY_INLINE hn::Vec<D> Median(std::size_t c) const {
    if constexpr (kSide == 3) {
      // The largest of the least, the middle one of the middle ones, the least of the largest.
      const auto low = hn::Max(hn::Max(Load(0, c), Load(0, c + 1)), Load(0, c + 2));
      const auto middle = Median3(Load(1, c), Load(1, c + 1), Load(1, c + 2));
      const auto high = hn::Min(hn::Min(Load(2, c), Load(2, c + 1)), Load(2, c + 2));
      return Median3(low, middle, high);
    } else {
      static_assert(kSide == 5);
      hn::Vec<D> rank[5][5];
      Unroll<5>([&](auto k) VELA_KERNEL_UNROLLED {
        Unroll<5>([&](auto j) VELA_KERNEL_UNROLLED { rank[k][j] = Load(k, c + j); });
        Sort5(rank[k][0], rank[k][1], rank[k][2], rank[k][3], rank[k][4]);
      });
      // Rows and columns are sorted, so rank[i][j] is above (i + 1) * (j + 1) - 1 others: the six
      // in one corner are too low, the six in the other too high. Of the next four from either side
      // all but one are.
      const auto low = hn::Max(hn::Max(rank[0][3], rank[1][2]), hn::Max(rank[2][1], rank[3][0]));
      const auto high = hn::Min(hn::Min(rank[1][4], rank[2][3]), hn::Min(rank[3][2], rank[4][1]));
      return Median7(low, high, rank[0][4], rank[1][3], rank[2][2], rank[3][1], rank[4][0]);
    }
  }
};

template <class D>
bool HasNaN(D d, const hn::TFromD<D>* row, std::size_t n) {
  auto found = hn::MaskFromVec(hn::Zero(d));
  std::size_t i = 0;
  for (; i + hn::Lanes(d) <= n; i += hn::Lanes(d)) {
    found = hn::Or(found, hn::IsNaN(hn::LoadU(d, row + i)));
  }
  bool has = !hn::AllFalse(d, found);
  for (; i < n; ++i) has = has || row[i] != row[i];
  return has;
}

// Columns are sorted once for all windows that hold them.
template <std::size_t kSide, class T>
void MedianRow(const T* const* rows, std::size_t cols, T* out) {
  using Lane = LaneOf<T>;
  const hn::ScalableTag<Lane> d;
  using D = decltype(d);
  constexpr std::size_t kLanes = hn::MaxLanes(D());
  constexpr std::size_t kBlock = 2048 / sizeof(T);
  HWY_ALIGN Lane lines[kSide][kBlock + 2 * kLanes];
  SortedColumns<std::remove_const_t<D>, kSide> sorted;
  for (std::size_t k = 0; k < kSide; ++k) sorted.line[k] = lines[k];

  for (std::size_t begin = 0; begin < cols; begin += kBlock) {
    const std::size_t block = std::min(kBlock, cols - begin);
    for (std::size_t c = 0; c < block + kSide - 1; c += kLanes) {
      hn::Vec<std::remove_const_t<D>> column[kSide];
      Unroll<kSide>([&](auto k) VELA_KERNEL_UNROLLED {
        column[k] = hn::LoadU(d, reinterpret_cast<const Lane*>(rows[k]) + begin + c);
      });
      if constexpr (kSide == 3) {
        Sort3(column[0], column[1], column[2]);
      } else {
        Sort5(column[0], column[1], column[2], column[3], column[4]);
      }
      Unroll<kSide>([&](auto k) VELA_KERNEL_UNROLLED { hn::StoreU(column[k], d, lines[k] + c); });
    }
    auto* const to = reinterpret_cast<Lane*>(out) + begin;
    std::size_t c = 0;
    for (; c + kLanes <= block; c += kLanes) hn::StoreU(sorted.Median(c), d, to + c);
    if (c < block) {
      HWY_ALIGN Lane last[kLanes];
      hn::Store(sorted.Median(c), d, last);
      std::memcpy(to + c, last, (block - c) * sizeof(Lane));
    }
  }
}

template <class T>
bool MedianRows(const T* const* rows, std::size_t count, std::size_t cols, std::size_t side,
                T* out) {
  if constexpr (std::floating_point<T>) {
    for (std::size_t i = 0; i < count + side - 1; ++i) {
      if (HasNaN(hn::ScalableTag<T>(), rows[i], cols + side - 1)) return false;
    }
  }
  for (std::size_t r = 0; r < count; ++r) {
    if (side == 3) {
      MedianRow<3>(rows + r, cols, out + r * cols);
    } else {
      MedianRow<5>(rows + r, cols, out + r * cols);
    }
  }
  return true;
}

}  // namespace
}  // namespace vela::kernel::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace vela::kernel {

template <Element T>
bool NetworkMedian(const T* const* rows, std::size_t count, std::size_t cols, std::size_t side,
                   T* out) {
  return VELA_KERNEL_DISPATCH(MedianRows<T>)(rows, count, cols, side, out);
}

#define VELA_KERNEL_INSTANTIATE(T) \
  template bool NetworkMedian(const T* const*, std::size_t, std::size_t, std::size_t, T*);
VELA_KERNEL_FOR_MATRIX_TYPES(VELA_KERNEL_INSTANTIATE)
#undef VELA_KERNEL_INSTANTIATE

}  // namespace vela::kernel
#endif
